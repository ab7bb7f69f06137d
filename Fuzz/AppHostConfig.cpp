// Any text as the app host's configuration.
#include <Tal/AppHostConfig.h>

#include <vector>

#include "Input.h"

namespace {

bool Load(Tal::AppHostConfiguration& config, const std::string& text) {
  std::vector<char> changed(text.begin(), text.end());
  changed.push_back('\0');
  return config.LoadAppHostConfigXML(changed.data());
}

std::string Described(const Tal::AppHostConfiguration& config) {
  std::string all;
  for (const auto& setting : config.Describe()) {
    FUZZ_CHECK(!setting.isFlag || setting.value == "true" || setting.value == "false", setting.name);
    all += setting.name + '=' + setting.value + (setting.isFromFile ? " from the file\n" : "\n");
  }
  return all;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  const std::string text(reinterpret_cast<const char*>(data), size);
  Tal::AppHostConfiguration config;
  const bool isLoaded = Load(config, text);
  if (config.IsAppHostStartupDisabled() && isLoaded) FUZZ_CHECK(config.IsAppConnectorHostStartupDisabled(), text);
  Tal::AppHostConfiguration same;
  FUZZ_CHECK(Load(same, text) == isLoaded, text);
  FUZZ_CHECK(Described(same) == Described(config), Described(same));
  const std::size_t dataPoints = config.GetResponseDataPoints().size();
  if (isLoaded && !config.IsInAppDebugMode()) {
    FUZZ_CHECK(Load(config, text), text);
    FUZZ_CHECK(config.GetResponseDataPoints().size() == 2 * dataPoints, text);
  }
  return 0;
}
