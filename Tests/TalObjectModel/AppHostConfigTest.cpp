#include <Tal/AppHostConfig.h>
#include <gmock/gmock.h>

#include <boost/algorithm/string/join.hpp>
#include <boost/optional/optional_io.hpp>
#include <fstream>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/TempFile.h"

namespace TalTest {
namespace {

using Tal::AppHostConfiguration;
using testing::ElementsAre;

/// What the configuration says that a fresh one does not: "name=value" in order.
std::string Changed(const AppHostConfiguration& configuration) {
  const auto defaults = AppHostConfiguration().Describe();
  const auto settings = configuration.Describe();
  std::string text;
  for (std::size_t i = 0; i < settings.size(); ++i) {
    if (settings[i].value == defaults[i].value) continue;
    text += (text.empty() ? "" : " ") + settings[i].name + '=' + settings[i].value;
  }
  return text;
}

bool Load(AppHostConfiguration& configuration, std::string text) {
  return configuration.LoadAppHostConfigXML(&text[0]);
}

const std::string kHead = "ERROR Failed to read configuration file: ";
const std::string kFallback = "ERROR Falling back to standard configuration.";
std::string Root(const std::string& inside) { return "<TalAppHostConfig>" + inside + "</TalAppHostConfig>"; }
std::string Points(const std::string& inside) { return Root("<ZelConfig>" + inside + "</ZelConfig>"); }

TEST(AppHostConfig, AppliesWhatItKnowsAndKeepsWhatStandsBeforeAFault) {
  const auto check = [](const std::string& xml, const std::string& changed, const std::string& reason) {
    ScopedLogCapture log;
    AppHostConfiguration configuration;
    EXPECT_EQ(Load(configuration, xml), reason.empty());
    EXPECT_EQ(Changed(configuration), changed);
    EXPECT_EQ(boost::algorithm::join(log.Take(), " / "), reason.empty() ? "" : kHead + reason);
  };
  const std::string file = "AppHostConfig.txt";
  ForEachCase(file, "document", [&](const Case& c) { check(c[0], c[1], c[2]); });
  ForEachCase(file, "root", [&](const Case& c) { check(Root(c[0]), c[1], c[2]); });
  ForEachCase(file, "debugging", [&](const Case& c) {
    check(Root("<Debugging Active='1'>" + c[0] + "</Debugging>"), "Debugging/Active=true " + c[1], c[2]);
  });
  ForEachCase(file, "data points", [&](const Case& c) {
    check(Points(c[0]), c[1].empty() ? "" : "ZelConfig/ResponseDps/Dp/ObjId=" + c[1], c[2]);
  });
}

TEST(AppHostConfig, LooksBelowDebuggingWhenTheModeWasOnBeforeAndActiveIsAbsent) {
  const std::string host = "<AppHost DisableStartup='1'/></Debugging>";
  for (const auto& [active, isDisabled] :
       {std::pair("<Debugging>", true), {"<Debugging Active=''>", true}, {"<Debugging Active='0'>", false}}) {
    AppHostConfiguration configuration;
    EXPECT_FALSE(configuration.ReplaceAppDebugMode(true));
    EXPECT_TRUE(Load(configuration, Root(active + host)));
    EXPECT_EQ(configuration.IsAppHostStartupDisabled(), isDisabled) << active;
    EXPECT_EQ(configuration.IsAppConnectorHostStartupDisabled(), isDisabled) << active;
  }
}

TEST(AppHostConfig, HasAsymmetricSettersAndAppendsDataPointsOnEveryLoad) {
  AppHostConfiguration configuration;
  configuration.SetAppDebugMode(true);
  EXPECT_TRUE(configuration.ReplaceAppDebugMode(false));
  EXPECT_FALSE(configuration.IsInAppDebugMode());
  EXPECT_FALSE(configuration.SetAppConnectorHostStartupDisabled(true));
  EXPECT_TRUE(configuration.SetAppConnectorHostStartupDisabled(true));
  configuration.SetAppHostStartupDisabled(true);
  EXPECT_TRUE(configuration.IsAppHostStartupDisabled());
  for (int i = 0; i < 2; ++i) Load(configuration, Points("<ResponseDps><Dp ObjId='5'/></ResponseDps>"));
  EXPECT_THAT(configuration.GetResponseDataPoints(), ElementsAre(5, 5));
  EXPECT_EQ(configuration.GetPathObjectModelConfig(), boost::none);
}

TEST(AppHostConfig, ReportsAFileThatCannotBeRead) {
  if (std::ifstream(AppHostConfiguration::ConfigurationFile())) GTEST_SKIP() << "this machine has the file";
  ScopedLogCapture log;
  AppHostConfiguration().LoadConfigurationFile();
  EXPECT_THAT(log.Take(), ElementsAre("ERROR App host config file cannot be read from: "
                                      "\"/opt/userdata/etc/talapphost/talapphostconfig.xml\""));
}

TEST(AppHostConfig, LoadsAFileOrFallsBack) {
  const TempFile good("good.xml", "<TalAppHostConfig WithoutKNX='1'/>");
  const TempFile cut("cut&\".xml", "<TalAppHostConfig TerminateOnFirmwareUpdate='1'/>" +
                                       Points("<ResponseDps><Dp ObjId='x'/></ResponseDps>"));
  AppHostConfiguration configuration;
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {good.path, {}},
      {cut.path, {kHead + "stoul", kFallback}},
      {"/dev/zero", {kHead + "it is longer than 16777216 octets", kFallback}},
      {"/no&such\"file", {"ERROR App host config file cannot be read from: \"/no&&such&\"file\""}}};
  for (const auto& [path, records] : cases) {
    ScopedLogCapture log;
    EXPECT_EQ(configuration.LoadConfigurationFile(path), records.empty()) << path;
    EXPECT_EQ(log.Take(), records) << path;
  }
  EXPECT_EQ(Changed(configuration), "WithoutKNX=true TerminateOnFirmwareUpdate=true");
}

TEST(LoadFile, ReadsEveryCharacterAndNoDirectory) {
  const std::string content("\xEF\xBB\xBF line\r\n\0\x1A end", 15);
  const TempFile file("load_file", content);
  const auto read = Tal::LoadFile(file.path);
  ASSERT_TRUE(read);
  EXPECT_EQ(std::string(read->begin(), read->end()), content);
  EXPECT_FALSE(Tal::LoadFile(file.path + "x"));
  EXPECT_FALSE(Tal::LoadFile(testing::TempDir()));
}

}  // namespace
}  // namespace TalTest
