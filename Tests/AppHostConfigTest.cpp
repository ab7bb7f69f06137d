#include <Tal/AppHostConfig.h>
#include <gmock/gmock.h>

#include <boost/optional/optional_io.hpp>
#include <fstream>

#include "Support/LogCapture.h"
#include "Support/TempFile.h"

namespace TalTest {
namespace {

using Tal::AppHostConfiguration;
using testing::ElementsAre;
using testing::IsEmpty;

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

struct Case {
  std::string xml;
  std::string changed;
  std::string reason;  ///< of the failure; empty: success
};

const std::string kHead = "Failed to read configuration file: ";
std::string Root(const std::string& inside) { return "<TalAppHostConfig>" + inside + "</TalAppHostConfig>"; }
std::string Debug(const std::string& inside) { return Root("<Debugging Active='1'>" + inside + "</Debugging>"); }
std::string Points(const std::string& inside) { return Root("<ZelConfig>" + inside + "</ZelConfig>"); }
std::string Repeated(const std::string& text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(AppHostConfig, AppliesWhatItKnowsAndKeepsWhatStandsBeforeAFault) {
  const std::string host = "Debugging/AppHost/DisableStartup=true";
  const std::string both = host + " Debugging/AppConnectorHost/DisableStartup=true";
  const std::string on = "Debugging/Active=true";
  const std::string ids = "ZelConfig/ResponseDps/Dp/ObjId=";
  const Case cases[] = {
      {"<TalAppHostConfig WithoutKNX='1' TerminateOnFirmwareUpdate='yes'/>",
       "WithoutKNX=true TerminateOnFirmwareUpdate=true", ""},
      {"<TalAppHostConfig WithoutKNX='0'/>", "", ""},
      {"<TalAppHostConfig WithoutKNX='false'/>", "WithoutKNX=true", ""},  // Deliberate: "0" alone is false
      {"<TalAppHostConfig WithoutKNX='00'/>", "WithoutKNX=true", ""},
      {"<TalAppHostConfig WithoutKNX='1'/><TalAppHostConfig WithoutKNX=''/>", "WithoutKNX=true", ""},
      {"<TalAppHostConfig WithoutKNX='1'/><TalAppHostConfig WithoutKNX='0'/>", "", ""},
      {"<TalAppHostConfig WithoutKNX='0' WithoutKNX='1'/>", "", ""},  // the first counts
      {"<TalAppHostConfig WithoutKNX='' WithoutKNX='1'/>", "", ""},
      {"<talapphostconfig WithoutKNX='1'/><Other/>", "", ""},
      {"<TalAppHostConfig withoutknx='1'/>", "", ""},
      {"\xEF\xBB\xBF<?xml version='1.0'?><!-- a --><TalAppHostConfig WithoutKNX='1'/>", "WithoutKNX=true", ""},
      {"<x/>", "", ""},
      {"", "", ""},
      {Root("<ObjectModelConfig Path='/a &amp; b/&#x263A;'/>"), "ObjectModelConfig/Path=/a & b/\u263A", ""},
      {Root("<!-- <ObjectModelConfig Path='/x'/> --> text <ObjectModelConfig Path=''/>"), "", ""},
      {Root("<App RootPath='/x'/>"), "", ""},  // not below Debugging
      {Root("<Debugging Active='0'><AppHost DisableStartup='1' RootPath='/x'/></Debugging>"), "", ""},
      {Root("<Debugging><AppHost DisableStartup='1'/></Debugging>"), "", ""},
      {Debug(
           "<App RootPath='/a'/><ManagedApp RootPath='/m'/><AppHost RootPath='/h'/><AppConnectorHost RootPath='/c'/>"),
       on + " Debugging/App/RootPath=/a Debugging/ManagedApp/RootPath=/m Debugging/AppHost/RootPath=/h "
            "Debugging/AppConnectorHost/RootPath=/c",
       ""},
      {Debug("<AppHost DisableStartup='1'/><AppConnectorHost DisableStartup='0'/>"), on + ' ' + both, ""},
      {Debug("<AppConnectorHost DisableStartup='1'/>"), on + " Debugging/AppConnectorHost/DisableStartup=true", ""},
      // A fault in the middle: the rule that the connector host follows the app host is not reached.
      {Debug("<AppHost DisableStartup='1'/>") +
           Points("<ResponseDps><Dp ObjId='7'/><Dp ObjId='x'/><Dp ObjId='9'/></ResponseDps>"),
       on + ' ' + host + ' ' + ids + '7', "stoul"},
      {Points("<ResponseDps><Dp ObjId='12x'/><Dp/><Dp ObjId=''/><Q ObjId='3'/><Dp ObjId=' 4'/></ResponseDps>"),
       ids + "12 4", ""},
      {Points("<ResponseDps><Dp ObjId='1'/></ResponseDps><ResponseDps><Dp ObjId='2'/></ResponseDps>"), ids + "1", ""},
      {Points("<First/><ResponseDps><Dp ObjId='1'/></ResponseDps>"), "", ""},  // Deliberate: the first child only
      {Points("<!-- no element --><ResponseDps><Dp ObjId='1'/></ResponseDps>"), ids + "1", ""},
      {Points("<ResponseDps><Dp ObjId='99999999999999999999999'/></ResponseDps>"), "", "stoul"},
      {"<TalAppHostConfig WithoutKNX='1'>", "", "unexpected end of data"},
      {"<TalAppHostConfig WithoutKNX='1'/><", "", "expected element name"},
      {"no xml", "", "expected <"},
      {std::string("<TalAppHostConfig WithoutKNX='1'/>\0<broken", 42), "WithoutKNX=true", ""},  // ends at the NUL
      {Root(Repeated("<a b='" + std::string(1000, 'x') + "'/>", 1024)), "", ""},
      {Repeated("<a>", 256) + Repeated("</a>", 256), "", ""},
      {Repeated("<a>", 257) + Repeated("</a>", 257), "", "elements are nested deeper than 256"},
      {Repeated("<a>", 1000000), "", "elements are nested deeper than 256"},
      {Repeated("<a b='>' c=\"/>\"><![CDATA[</a></a>]]><!-- </a> --><?pi </a> ?>", 257), "",
       "elements are nested deeper than 256"},
  };
  for (const Case& c : cases) {
    ScopedLogCapture log;
    AppHostConfiguration configuration;
    EXPECT_EQ(Load(configuration, c.xml), c.reason.empty()) << c.xml.substr(0, 200);
    std::string parts = Changed(configuration);
    EXPECT_EQ(parts, c.changed) << c.xml.substr(0, 200);
    const auto records = log.Take();
    if (c.reason.empty()) {
      EXPECT_THAT(records, IsEmpty());
    } else {
      EXPECT_THAT(records, ElementsAre("ERROR " + kHead + c.reason)) << c.xml.substr(0, 200);
    }
  }
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
  const std::string head = "ERROR ";
  const TempFile good("good.xml", "<TalAppHostConfig WithoutKNX='1'/>");
  const TempFile cut("cut&\".xml", "<TalAppHostConfig TerminateOnFirmwareUpdate='1'/>" +
                                       Points("<ResponseDps><Dp ObjId='x'/></ResponseDps>"));
  ScopedLogCapture log;
  AppHostConfiguration configuration;
  EXPECT_TRUE(configuration.LoadConfigurationFile(good.path));
  EXPECT_THAT(log.Take(), IsEmpty());
  EXPECT_FALSE(configuration.LoadConfigurationFile(cut.path));
  EXPECT_THAT(log.Take(), ElementsAre(head + kHead + "stoul", head + "Falling back to standard configuration."));
  EXPECT_EQ(Changed(configuration), "WithoutKNX=true TerminateOnFirmwareUpdate=true");
  EXPECT_FALSE(configuration.LoadConfigurationFile("/dev/zero"));
  EXPECT_THAT(log.Take(), ElementsAre(head + kHead + "it is longer than 16777216 octets",
                                      head + "Falling back to standard configuration."));
  EXPECT_FALSE(configuration.LoadConfigurationFile("/no&such\"file"));
  EXPECT_THAT(log.Take(), ElementsAre(head + "App host config file cannot be read from: \"/no&&such&\"file\""));
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
