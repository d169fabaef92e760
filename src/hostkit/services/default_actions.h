// What the host does about the problems of a scene load.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "hostsdk/core_interface.h"

namespace hostkit::services {

// Bits of an action: 1 writes to the log, 2 records a message that can be asked for, 4 without 2 fails the load. At
// start every action is 1.
class DefaultActions : public hostsdk::IDefaultActionSystem {
 public:
  explicit DefaultActions(std::function<void(const std::string&)> log);

  void SetDefaultAction(std::uint32_t type, std::uint32_t action, std::uint32_t reserved, void* reserved2) override;
  void GetDefaultAction(std::uint32_t type, std::uint32_t& action) override;  // leaves it alone for an unknown type
  int MessageCount(std::uint32_t type) override;
  std::u16string MessageText(std::uint32_t type, int index) override;  // empty when there is none

  // Forgets the recorded messages.
  void beginLoad();
  // Deals with one problem of a load, of one of the host port's types; false: the load has failed.
  bool accept(std::uint32_t type, const std::string& message);

 private:
  struct Entry {
    std::uint32_t action = hostsdk::kActionLog;
    std::vector<std::u16string> messages;
  };
  Entry* entry(std::uint32_t type);

  std::function<void(const std::string&)> log_;
  std::array<Entry, 4> entries_;  // by type, from 1
};

}  // namespace hostkit::services
