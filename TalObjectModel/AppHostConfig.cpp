#include <Tal/AppHostConfig.h>
#include <TalLog/LogRecord.h>

#include <boost/io/quoted.hpp>
#include <cstdint>
#include <fstream>
#include <rapidxml.hpp>
#include <stdexcept>

#include "XmlDepth.h"

namespace Tal {

using Node = rapidxml::xml_node<char>;

/// The attributes of the file: which member each sets, and how.
struct AppHostConfigRows {
  using Config = AppHostConfiguration;
  using Flag = std::atomic<bool> Config::*;
  using Path = boost::optional<std::string> Config::*;
  struct Row {
    const char* parent;  ///< the element around
    const char* element;
    const char* attribute;
    Flag flag;  ///< or
    Path path;
  };
  static constexpr char kRoot[] = "TalAppHostConfig";
  static constexpr char kDebugging[] = "Debugging";
  // clang-format off
  static constexpr Row kRows[] = {
      {"",         kRoot,               "WithoutKNX",                &Config::m_withoutKnx,                      nullptr},
      {"",         kRoot,               "TerminateOnFirmwareUpdate", &Config::m_terminateOnFirmwareUpdate,       nullptr},
      {kRoot,      "ObjectModelConfig", "Path",                      nullptr, &Config::m_pathObjectModelConfig},
      {kRoot,      kDebugging,          "Active",                    &Config::m_appDebugMode,                    nullptr},
      {kDebugging, "App",               "RootPath",                  nullptr, &Config::m_rootPathNativeApp},
      {kDebugging, "ManagedApp",        "RootPath",                  nullptr, &Config::m_rootPathManagedApp},
      {kDebugging, "AppHost",           "RootPath",                  nullptr, &Config::m_rootPathAppHost},
      {kDebugging, "AppHost",           "DisableStartup",            &Config::m_appHostStartupDisabled,          nullptr},
      {kDebugging, "AppConnectorHost",  "RootPath",                  nullptr, &Config::m_rootPathAppConnectorHost},
      {kDebugging, "AppConnectorHost",  "DisableStartup",            &Config::m_appConnectorHostStartupDisabled, nullptr},
  };
  // clang-format on

  /// The bit of a flag's row in m_fromFile.
  static unsigned BitOf(Flag flag) {
    unsigned bit = 0;
    for (std::size_t i = 0; i < std::size(kRows); ++i) bit |= kRows[i].flag == flag ? 1u << i : 0u;
    return bit;
  }
  static bool IsFromFile(const Config& config, Flag flag) { return (config.m_fromFile & BitOf(flag)) != 0; }

  /// Applies the attributes of @p element that the rows know.
  static void Apply(Config& config, const char* parent, const Node& element);
  static void ApplyDataPoints(Config& config, const Node& zelConfig);
  static void ApplyDebugging(Config& config, const Node& debugging);
  static void ApplyRoot(Config& config, const Node& root);
  static void ApplyDocument(Config& config, const rapidxml::xml_document<char>& document);
};

namespace {

constexpr char kConfigurationFile[] = "/opt/userdata/etc/talapphost/talapphostconfig.xml";
constexpr char kFailed[] = "Failed to read configuration file: ";
constexpr std::size_t kMaxDepth = 256;  // the parser calls itself for every level
constexpr char kResponseDataPoints[] = "ZelConfig/ResponseDps/Dp/ObjId";

constexpr std::size_t kMaxSize = std::size_t{16} * 1024 * 1024;

/// The first characters of a file, up to @p limit or a little more; nothing when it cannot be read.
boost::optional<std::vector<char>> ReadFile(const std::string& path, std::size_t limit) {
  std::ifstream file(path);
  if (!file) return boost::none;
  std::vector<char> content;
  char chunk[4096];
  while (content.size() <= limit && (file.read(chunk, sizeof chunk), file.gcount() > 0)) {
    content.insert(content.end(), chunk, chunk + file.gcount());
  }
  if (file.bad()) return boost::none;
  return content;
}

std::string NameOf(const Node& node) { return {node.name(), node.name_size()}; }
bool IsNamed(const Node& node, const char* name) { return NameOf(node) == name; }

/// The text of the first attribute of that name; empty when there is none.
std::string AttributeOf(const Node& element, const char* name) {
  const auto* const attribute = element.first_attribute(name);
  return attribute != nullptr ? std::string(attribute->value(), attribute->value_size()) : std::string();
}

/// The first element among @p node and its following siblings; null at the end. Text between elements is passed over.
const Node* ElementFrom(const Node* node) {
  while (node != nullptr && node->type() != rapidxml::node_element) node = node->next_sibling();
  return node;
}

template <class Visit>
void ForEachChild(const Node& element, Visit visit) {
  for (const Node* child = ElementFrom(element.first_node()); child != nullptr;
       child = ElementFrom(child->next_sibling())) {
    visit(*child);
  }
}

}  // namespace

void AppHostConfigRows::Apply(Config& config, const char* parent, const Node& element) {
  for (std::size_t i = 0; i < std::size(kRows); ++i) {
    const Row& row = kRows[i];
    if (std::string(row.parent) != parent || !IsNamed(element, row.element)) continue;
    const std::string text = AttributeOf(element, row.attribute);
    if (text.empty()) continue;  // counts as absent
    // Deliberate: a flag is false for "0" alone; "false" and "00" switch it on.
    if (row.flag != nullptr) config.*row.flag = text != "0";
    if (row.path != nullptr) config.*row.path = text;
    config.m_fromFile |= 1u << i;
  }
}

void AppHostConfigRows::ApplyDataPoints(Config& config, const Node& zelConfig) {
  // Deliberate: the list counts as the first child element only.
  const Node* const list = ElementFrom(zelConfig.first_node());
  if (list == nullptr || !IsNamed(*list, "ResponseDps")) return;
  ForEachChild(*list, [&](const Node& dataPoint) {
    if (!IsNamed(dataPoint, "Dp")) return;
    const std::string id = AttributeOf(dataPoint, "ObjId");
    if (!id.empty()) config.m_responseDataPoints.push_back(std::stoul(id));
  });
}

void AppHostConfigRows::ApplyDebugging(Config& config, const Node& debugging) {
  Apply(config, kRoot, debugging);
  if (!config.m_appDebugMode) return;
  ForEachChild(debugging, [&](const Node& child) { Apply(config, kDebugging, child); });
}

void AppHostConfigRows::ApplyRoot(Config& config, const Node& root) {
  Apply(config, "", root);
  ForEachChild(root, [&](const Node& child) {
    if (IsNamed(child, "ZelConfig")) {
      ApplyDataPoints(config, child);
    } else if (IsNamed(child, kDebugging)) {
      ApplyDebugging(config, child);
    } else {
      Apply(config, kRoot, child);
    }
  });
}

void AppHostConfigRows::ApplyDocument(Config& config, const rapidxml::xml_document<char>& document) {
  ForEachChild(document, [&](const Node& element) {
    if (IsNamed(element, kRoot)) ApplyRoot(config, element);
  });
  if (!config.m_appHostStartupDisabled) return;
  config.m_appConnectorHostStartupDisabled = true;
  if (IsFromFile(config, &Config::m_appHostStartupDisabled)) {
    config.m_fromFile |= BitOf(&Config::m_appConnectorHostStartupDisabled);
  }
}

AppHostConfiguration::AppHostConfiguration() = default;

const char* AppHostConfiguration::ConfigurationFile() noexcept { return kConfigurationFile; }

void AppHostConfiguration::LoadConfigurationFile() { LoadConfigurationFile(kConfigurationFile); }

bool AppHostConfiguration::LoadConfigurationFile(const std::string& path) {
  boost::optional<std::vector<char>> content = ReadFile(path, kMaxSize);
  if (!content) {
    TAL_LOG(Error) << "App host config file cannot be read from: " << boost::io::quoted(path, '&');
    return false;
  }
  content->push_back('\0');
  if (content->size() > kMaxSize + 1) {
    TAL_LOG(Error) << kFailed << "it is longer than " << kMaxSize << " octets";
  } else if (LoadAppHostConfigXML(content->data())) {
    return true;
  }
  TAL_LOG(Error) << "Falling back to standard configuration.";
  return false;
}

bool AppHostConfiguration::LoadAppHostConfigXML(char* text) {
  try {
    if (DepthOfXml(text) > kMaxDepth) {
      throw std::runtime_error("elements are nested deeper than " + std::to_string(kMaxDepth));
    }
    rapidxml::xml_document<char> document;
    document.parse<0>(text);
    AppHostConfigRows::ApplyDocument(*this, document);
    return true;
  } catch (const std::exception& exception) {
    TAL_LOG(Error) << kFailed << exception.what();
    return false;
  }
}

bool AppHostConfiguration::IsInAppDebugMode() const { return m_appDebugMode; }
bool AppHostConfiguration::IsAppHostStartupDisabled() const { return m_appHostStartupDisabled; }
bool AppHostConfiguration::IsAppConnectorHostStartupDisabled() const { return m_appConnectorHostStartupDisabled; }
bool AppHostConfiguration::IsAppHostWithoutKNX() const { return m_withoutKnx; }
bool AppHostConfiguration::IsAppHostTerminateOnFirmwareUpdate() const { return m_terminateOnFirmwareUpdate; }

void AppHostConfiguration::SetAppDebugMode(bool isOn) { m_appDebugMode = isOn; }
bool AppHostConfiguration::ReplaceAppDebugMode(bool isOn) { return m_appDebugMode.exchange(isOn); }
void AppHostConfiguration::SetAppHostStartupDisabled(bool isDisabled) { m_appHostStartupDisabled = isDisabled; }
// Deliberate: a setter that tells the previous value; its callers restore it.
bool AppHostConfiguration::SetAppConnectorHostStartupDisabled(bool isDisabled) {
  return m_appConnectorHostStartupDisabled.exchange(isDisabled);
}

const boost::optional<std::string>& AppHostConfiguration::GetRootPathNativeApp() const { return m_rootPathNativeApp; }
const boost::optional<std::string>& AppHostConfiguration::GetRootPathManagedApp() const { return m_rootPathManagedApp; }
const boost::optional<std::string>& AppHostConfiguration::GetRootPathAppHost() const { return m_rootPathAppHost; }
const boost::optional<std::string>& AppHostConfiguration::GetRootPathAppConnectorHost() const {
  return m_rootPathAppConnectorHost;
}
const boost::optional<std::string>& AppHostConfiguration::GetPathObjectModelConfig() const {
  return m_pathObjectModelConfig;
}
const std::vector<unsigned long>& AppHostConfiguration::GetResponseDataPoints() const { return m_responseDataPoints; }

std::vector<AppHostConfiguration::Setting> AppHostConfiguration::Describe() const {
  std::vector<Setting> settings;
  for (std::size_t i = 0; i < std::size(AppHostConfigRows::kRows); ++i) {
    const AppHostConfigRows::Row& row = AppHostConfigRows::kRows[i];
    const std::string parent = row.parent == AppHostConfigRows::kDebugging ? std::string(row.parent) + '/' : "";
    const std::string element = row.element == AppHostConfigRows::kRoot ? "" : std::string(row.element) + '/';
    Setting setting{parent + element + row.attribute, "", row.flag != nullptr, (m_fromFile >> i & 1u) != 0};
    if (row.flag != nullptr) setting.value = this->*row.flag ? "true" : "false";
    if (row.path != nullptr) setting.value = (this->*row.path).value_or("");
    settings.push_back(std::move(setting));
  }
  Setting dataPoints{kResponseDataPoints, "", false, !m_responseDataPoints.empty()};
  for (const unsigned long id : m_responseDataPoints) {
    dataPoints.value += (dataPoints.value.empty() ? "" : " ") + std::to_string(id);
  }
  settings.push_back(std::move(dataPoints));
  return settings;
}

boost::optional<std::vector<char>> LoadFile(const std::string& path) { return ReadFile(path, SIZE_MAX); }

}  // namespace Tal
