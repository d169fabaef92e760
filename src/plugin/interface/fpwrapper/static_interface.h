// Publishes member functions of a class to scripts. The class derives from FFStaticInterface and describes itself in
// its constructor:
//
//   FFCreateDescriptor descriptor(*this, hostsdk::Interface_ID{0x12, 0x34}, u"Lamp");
//   descriptor.addFunction(&Lamp::Switch, u"Switch", {u"on"});
//   descriptor.addReadOnlyProperty(&Lamp::Colour, u"Colour");
//   descriptor.finish();
//
// Types, ids and the dispatch follow from the members' signatures.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "hostsdk/function_publishing.h"
#include "plugin/interface/fpwrapper/dispatcher.h"

namespace corvantis::max3d::fpwrapper {

// Refuses the host's default id: reports it to the host's log with a dialog (where a host is bound) and throws
// std::runtime_error with the same text, which names the interface.
void refuseDefaultId(hostsdk::Interface_ID id, const std::u16string& interfaceName);

template <class Class, std::uint32_t Flags>
class FFCreateDescriptor;

template <class Class, std::uint32_t Flags>
class FFStaticInterface : public hostsdk::FPStaticInterface {
 public:
  // Whether the host knows the interface.
  bool descriptorLoaded() const { return descriptorLoaded_; }

 protected:
  int dispatchFunction(hostsdk::FunctionID id, hostsdk::TimeValue time, hostsdk::FPValue& result,
                       hostsdk::FPParams* params) override {
    const auto found = dispatchers_.find(static_cast<std::int16_t>(id));
    if (found == dispatchers_.end()) return hostsdk::kDispatchNoSuchFunction;
    found->second->invoke(*this, time, result, params);
    return hostsdk::kDispatchOk;
  }

 private:
  friend class FFCreateDescriptor<Class, Flags>;

  bool descriptorLoaded_ = false;
  std::map<std::int16_t, std::unique_ptr<FPDispatcher>> dispatchers_;
};

// Builds the descriptor of one interface and hands it to the host. Used once, in the interface's constructor.
template <class Class, std::uint32_t Flags>
class FFCreateDescriptor {
 public:
  // Throws std::runtime_error for the host's default id.
  FFCreateDescriptor(FFStaticInterface<Class, Flags>& target, hostsdk::Interface_ID id, std::u16string name,
                     hostsdk::ClassDesc* classDescriptor = nullptr)
      : target_(target), id_(id), name_(std::move(name)), classDescriptor_(classDescriptor) {
    refuseDefaultId(id_, name_);
  }

  // Any `id` above 65534 stands for the next automatic id. A given id does not advance the automatic ones; an id used
  // before replaces the earlier function.
  template <class Result, class... Parameters>
  void addFunction(Result (Class::*member)(Parameters...), std::u16string name, ParameterNames parameterNames = {},
                   std::uint32_t id = hostsdk::kNoFunction) {
    const std::int16_t chosen = static_cast<std::int16_t>(id < hostsdk::kNoFunction ? id : nextId_++);
    target_.dispatchers_[chosen] = std::make_unique<FPDispatcherImpl<Class, Result(Parameters...)>>(
        chosen, std::move(name), std::move(parameterNames), member);
  }

  template <class Result>
  void addReadOnlyProperty(Result (Class::*getter)(), std::u16string name) {
    properties_.push_back({nextId_, hostsdk::kNoFunction, std::move(name), ResultType<Result>::code});
    addFunction(getter, std::u16string());
  }

  // From here on the host knows the interface.
  void finish() {
    DescriptorBuffer buffer;
    for (const auto& [id, dispatcher] : target_.dispatchers_) dispatcher->describe(buffer);
    describeProperties(buffer);
    buffer.addInteger(hostsdk::kTagEnd);
    constexpr int noDescriptionResource = 0;
    target_.load_descriptor(id_, name_, noDescriptionResource, classDescriptor_, Flags, buffer.slots());
    target_.descriptorLoaded_ = true;
    properties_.clear();
  }

 private:
  struct Property {
    hostsdk::FunctionID getter, setter;
    std::u16string name;
    int type;
  };

  void describeProperties(DescriptorBuffer& buffer) const {
    if (properties_.empty()) return;
    constexpr std::uint32_t noDescription = 0;
    buffer.addInteger(hostsdk::kTagProperties);
    for (const Property& property : properties_) {
      buffer.addInteger(property.getter);
      buffer.addInteger(property.setter);
      buffer.addText(property.name.c_str());
      buffer.addInteger(noDescription);
      buffer.addInteger(static_cast<std::uint32_t>(property.type));
    }
  }

  FFStaticInterface<Class, Flags>& target_;
  hostsdk::Interface_ID id_;
  std::u16string name_;
  hostsdk::ClassDesc* classDescriptor_;
  std::vector<Property> properties_;
  std::uint16_t nextId_ = 0;
};

}  // namespace corvantis::max3d::fpwrapper
