#include "hostkit/services/path_configuration.h"

#include <algorithm>
#include <boost/property_tree/ini_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <utility>

#include "hostkit/text/utf8.h"
#include "platform/files.h"

namespace hostkit::services {
namespace {

std::string lowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); });
  return text;
}

void appendNew(std::vector<std::string>& list, const std::string& folder) {
  if (std::find(list.begin(), list.end(), folder) == list.end()) list.push_back(folder);
}

}  // namespace

PathConfiguration::PathConfiguration(std::function<void(const std::string&)> log) : log_(std::move(log)) {}

bool PathConfiguration::read(const std::u16string& file, Folders& folders) {
  std::ifstream stream(platform::nativePath(file));
  boost::property_tree::ptree sections;
  try {
    if (!stream) throw std::runtime_error("it cannot be opened");
    boost::property_tree::read_ini(stream, sections);
  } catch (const std::exception& e) {
    log_("Cannot read the path configuration " + toUtf8(file) + ": " + e.what());
    return false;
  }
  for (const auto& [name, entries] : sections) {
    const std::string section = lowerCase(name);
    const bool all = section == "directories";
    for (const auto& [key, value] : entries) {
      const std::string folder = platform::nativePath(fromUtf8(value.data()));
      if (all || section == "bitmapdirs") appendNew(folders.textures, folder);
      if (all || section == "xreferencedirs") appendNew(folders.xrefs, folder);
      if (all || section == "plugindirs") appendNew(folders.plugins, folder);
    }
  }
  return true;
}

bool PathConfiguration::LoadPathConfiguration(const std::u16string& file) {
  Folders fresh;
  if (!read(file, fresh)) return false;
  folders_ = std::move(fresh);
  return true;
}

bool PathConfiguration::MergePathConfiguration(const std::u16string& file) { return read(file, folders_); }

}  // namespace hostkit::services
