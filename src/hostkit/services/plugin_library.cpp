#include "hostkit/services/plugin_library.h"

#include <fmt/format.h>

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <cstdint>
#include <stdexcept>

#include "hostsdk/types.h"

namespace hostkit::services {

struct PluginLibrary::Library {
  boost::dll::shared_library handle;
};

namespace {

template <class Function>
Function* entryPoint(const boost::dll::shared_library& library, const char* name, const std::string& path) {
  if (!library.has(name)) throw std::runtime_error(fmt::format("{} is no plug-in: it does not export {}", path, name));
  return &library.get<Function>(name);
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& nativePath) : library_(std::make_unique<Library>()) {
  try {
    library_->handle.load(nativePath, boost::dll::load_mode::rtld_now | boost::dll::load_mode::rtld_local);
  } catch (const std::exception& e) {
    throw std::runtime_error(fmt::format("The plug-in {} cannot be loaded: {}", nativePath, e.what()));
  }

  auto* describe = entryPoint<const char16_t*()>(library_->handle, "LibDescription", nativePath);
  auto* version = entryPoint<std::uint32_t()>(library_->handle, "LibVersion", nativePath);
  auto* initialise = entryPoint<void()>(library_->handle, "LibInit", nativePath);
  if (version() != hostsdk::kHostVersion)
    throw std::runtime_error(
        fmt::format("The plug-in {} was built for another host: expected version {:#010x}, got {:#010x}", nativePath,
                    hostsdk::kHostVersion, version()));
  description_ = describe();
  initialise();
}

PluginLibrary::~PluginLibrary() = default;

std::string PluginLibrary::defaultPath() {
  const auto folder = boost::dll::program_location().parent_path();
  return (folder / ("libcorvantis" + boost::dll::shared_library::suffix().string())).string();
}

}  // namespace hostkit::services
