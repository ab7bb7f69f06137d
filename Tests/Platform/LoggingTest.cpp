#include <TalLog/Assertion.h>
#include <TalLog/LogEntryFormatter.h>
#include <TalLog/LogRecord.h>
#include <gmock/gmock.h>
#include <log4cplus/configurator.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <thread>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/TempFile.h"

namespace Tal {
namespace {

using TalTest::ScopedLogCapture;
using TalTest::TempFile;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr CallSite kSite{"ToKnxValue", "bool Tal::ToKnxValue(int)", "TalObjectModel/Knx.Converter.cpp", 123};

/// What goes to standard error meanwhile.
template <class Call>
std::string Heard(Call call) {
  testing::internal::CaptureStderr();
  call();
  return testing::internal::GetCapturedStderr();
}
void Warning() { TAL_LOG_AT(Warn, kSite) << "a warning"; }

/// What is said of a configuration; empty: it is usable. Everything is as before afterwards.
std::string Configured(const std::string& path) {
  std::string reason;
  Heard([&] {  // where log4cplus complains
    const bool isUsable = ConfigureLogging(path, reason);
    EXPECT_EQ(isUsable, reason.empty());
    for (int i = 0; i < 3; ++i) Warning();  // whatever the file says, records are made and harm nobody
  });
  log4cplus::Logger::getRoot().removeAllAppenders();
  return reason;
}

TEST(Logging, ARecordCarriesLevelTextFunctionAndSource) {
  ScopedLogCapture log;
  TAL_LOG_AT(Warn, kSite) << "number " << 1234567 << ' ' << 0.5;
  const auto records = log.Records();
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].level, LogLevel::Warn);
  EXPECT_EQ(records[0].text, "ToKnxValue(TalObjectModel/Knx.Converter:123) - number 1234567 0.5");
  EXPECT_EQ(records[0].message, "number 1234567 0.5");
  EXPECT_EQ(records[0].function, "bool Tal::ToKnxValue(int)");
  EXPECT_EQ(records[0].file, "TalObjectModel/Knx.Converter");
  EXPECT_EQ(records[0].line, 123);
}

TEST(Logging, APlaceNamesItsSourceWithoutBuildPrefix) {
  const CallSite here = TAL_HERE;
  EXPECT_EQ(WithoutExtension(here.file), "Tests/Platform/LoggingTest");
  EXPECT_STREQ(here.function, "TestBody");
  EXPECT_EQ(WithoutExtension("a.b/c"), "a.b/c");
}

TEST(Logging, ContextAndRecursionBelongToTheThreadAndCannotForgeThePrefix) {
  ScopedLogCapture log;
  {
    const ScopedLoggingContext outer("kitchen - light  -  1");
    const LoggingRecursionScope deeper;
    const LoggingRecursionScope deepest;
    TAL_LOG_AT(Info, kSite) << "a - b";
    std::thread([] { TAL_LOG_AT(Info, kSite) << "other thread"; }).join();
    const ScopedLoggingContext none("");
    TAL_LOG_AT(Info, kSite) << "inner";
  }
  TAL_LOG_AT(Info, kSite) << "after";
  std::vector<std::string> texts;
  for (const auto& record : log.Records()) texts.push_back(record.text);
  const std::string name = "ToKnxValue(TalObjectModel/Knx.Converter:123)";
  EXPECT_THAT(texts, ElementsAre("[kitchen-light-1] " + name + " -     a - b", name + " - other thread",
                                 name + " -     inner", name + " - after"));
  EXPECT_THAT(log.Take(), ElementsAre("INFO a - b", "INFO other thread", "INFO inner", "INFO after"));
}

TEST(Logging, BuildsNoTextWhileTheLevelIsOff) {
  ScopedLogCapture log(LogLevel::Warn);
  int built = 0;
  const auto text = [&] { return ++built, "text"; };
  if (built == 0)
    TAL_LOG(Info) << text();  // no braces: a record is one statement
  else
    TAL_LOG(Error) << text();
  EXPECT_EQ(built, 0);
  TAL_LOG(Warn) << text();
  EXPECT_EQ(built, 1);
}

TEST(Logging, WithoutConfigurationWarningsGoToStandardErrorUntilThereIsAnAppender) {
  EXPECT_THAT(Heard(Warning), HasSubstr("a warning"));
  EXPECT_EQ(Heard([] { TAL_LOG_AT(Info, kSite) << "too low"; }), "");
  const ScopedLogCapture log;
  EXPECT_EQ(Heard(Warning), "");
}

TEST(Logging, AnUnusableConfigurationIsRefusedAndChangesNothing) {
  const auto refuses = [](const std::string& path, const std::string& reason) {
    EXPECT_THAT(Configured(path), HasSubstr(reason));
    EXPECT_FALSE(IsLogEnabled(LogLevel::Info));
    EXPECT_THAT(Heard(Warning), HasSubstr("a warning"));
  };
  TalTest::ForEachCase("Logging.txt", "refused",
                       [&](const auto& c) { refuses(TempFile("log.properties", c[0]).path, c[1]); });
  refuses("/nonexistent/log.properties", "cannot be read");
  refuses("/", "cannot be read");
}

TEST(Logging, WhatCannotBeWrittenHarmsNobody) {
  const std::string toFile = "log4cplus.rootLogger=INFO, A\nlog4cplus.appender.A=log4cplus::FileAppender\n";
  TalTest::ForEachCase("Logging.txt", "usable", [&](const auto& c) {
    EXPECT_EQ(Configured(TempFile("log.properties", toFile + "log4cplus.appender.A." + c[0]).path), "");
    GetGlobalDefaultLogger().setLogLevel(static_cast<int>(LogLevel::Warn));
  });
}

// In processes of their own: a configuration lasts as long as its process.
TEST(LoggingDeathTest, APropertiesFileDecidesLevelAndPlace) {
  const TempFile file(
      "good.properties",
      "log4cplus.rootLogger=INFO, ERR\nlog4cplus.appender.ERR=log4cplus::ConsoleAppender\n"
      "log4cplus.appender.ERR.logToStdErr=true\nlog4cplus.appender.ERR.layout=log4cplus::PatternLayout\n"
      "log4cplus.appender.ERR.layout.ConversionPattern=<%p %m>%n\n");
  const auto log = [&](bool configured) {
    TAL_LOG_AT(Debug, kSite) << "too low";
    TAL_LOG_AT(Info, kSite) << "once";
    std::remove(file.path.c_str());  // this process made one of its own
    std::_Exit(configured ? 0 : 1);
  };
  std::string reason;
  const auto once = testing::ExitedWithCode(0);
  EXPECT_EXIT(log(ConfigureLogging(file.path, reason)), once, "^<INFO ToKnxValue.*once>\n$");
  // An application may also configure log4cplus itself before the first record.
  EXPECT_EXIT((log4cplus::PropertyConfigurator::doConfigure(file.path), log(true)), once,
              "^<INFO ToKnxValue.*once>\n$");
}

TEST(LoggingDeathTest, TheExampleOfTheManualDividesRecordsByLevel) {
  const auto run = [] {
    const std::string folder = testing::TempDir() + std::to_string(::getpid()) + "logs";
    std::string reason;
    const bool isReady = ::mkdir(folder.c_str(), 0700) == 0 && ::chdir(folder.c_str()) == 0 &&
                         ConfigureLogging(TAL_LOG_PROPERTIES, reason);
    TAL_LOG_AT(Debug, kSite) << "too low";
    TAL_LOG_AT(Info, kSite) << "told";
    TAL_LOG_AT(Error, kSite) << "refused";
    std::cerr << "file:\n" << std::ifstream("talobjectmodel.log").rdbuf() << reason;
    std::filesystem::remove_all(folder);
    std::_Exit(isReady ? 0 : 1);
  };
  const std::string record = " ToKnxValue.TalObjectModel/Knx.Converter:123. - ";
  const std::string time = "[0-9:,]+ ";
  const std::string thread = " \\[[0-9.]+\\]";  // log4cplus prints it in the locale
  EXPECT_EXIT(run(), testing::ExitedWithCode(0),
              "^" + time + "ERROR" + record + "refused\nfile:\n[0-9-]+T" + time + "INFO " + thread + record +
                  "told\n[0-9-]+T" + time + "ERROR" + thread + record + "refused\n$");
}

/// Logs when the process ends, after the objects of its threads are gone.
struct LateLogger {
  ~LateLogger() { TAL_LOG_AT(Warn, kSite) << "late"; }
};

TEST(LoggingDeathTest, GoesOnWhileTheProcessEnds) {
  const auto exit = [] {
    static const LateLogger late;
    const ScopedLoggingContext context("a context of more characters than fit into a small string");
    std::exit(0);
  };
  EXPECT_EXIT(exit(), testing::ExitedWithCode(0), "ToKnxValue.* - late\n");
}

void FailAnAssertion() { TAL_ASSERT2(1 + 1 == 3); }

TEST(AssertionDeathTest, WritesItsPiecesToStandardErrorAndTheLogThenTerminates) {
  const std::string sentence = "FailAnAssertion Tests/Platform/LoggingTest:[0-9]+ TAL_ASSERT2.1 . 1 == 3. failed";
  EXPECT_DEATH(FailAnAssertion(), "^" + sentence + "\n.*FATAL AssertionFailed.*Assertion:[0-9]+. - " + sentence);
}

}  // namespace
}  // namespace Tal
