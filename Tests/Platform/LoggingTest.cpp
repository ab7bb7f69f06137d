#include <TalLog/Assertion.h>
#include <TalLog/LogEntryFormatter.h>
#include <TalLog/LogRecord.h>
#include <gmock/gmock.h>
#include <log4cplus/configurator.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <thread>

#include "Support/LogCapture.h"

namespace Tal {
namespace {

using TalTest::ScopedLogCapture;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr CallSite kSite{"ToKnxValue", "bool Tal::ToKnxValue(int)", "TalObjectModel/Knx.Converter.cpp", 123};

/// A file of this process's own.
std::string Temporary(const std::string& name) { return testing::TempDir() + std::to_string(::getpid()) + name; }

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
  const auto text = [&] {
    ++built;
    return "text";
  };
  if (built == 0)
    TAL_LOG(Info) << text();  // no braces: a record is one statement
  else
    TAL_LOG(Error) << text();
  EXPECT_EQ(built, 0);
  TAL_LOG(Warn) << text();
  EXPECT_EQ(built, 1);
}

TEST(Logging, WithoutConfigurationWarningsGoToStandardError) {
  testing::internal::CaptureStderr();
  TAL_LOG_AT(Info, kSite) << "too low";
  TAL_LOG_AT(Warn, kSite) << "high enough";
  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_THAT(text, HasSubstr("high enough"));
  EXPECT_THAT(text, testing::Not(HasSubstr("too low")));
}

TEST(Logging, AnAppendersPresenceSilencesStandardError) {
  testing::internal::CaptureStderr();
  {
    ScopedLogCapture log;
    TAL_LOG(Error) << "captured";
  }
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(Logging, AnUnusableConfigurationIsRefusedAndChangesNothing) {
  std::string reason;
  EXPECT_FALSE(ConfigureLogging("/nonexistent/log.properties", reason));
  EXPECT_THAT(reason, HasSubstr("cannot be read"));
  EXPECT_FALSE(ConfigureLogging("/", reason));
  EXPECT_THAT(reason, HasSubstr("cannot be read"));
  const std::string path = Temporary("broken.properties");
  std::ofstream(path) << "log4cplus.logger.tal=DEBUG\n";
  EXPECT_FALSE(ConfigureLogging(path, reason));
  EXPECT_THAT(reason, HasSubstr("no usable appender"));
  std::ofstream(path) << "log4cplus.rootLogger=LOUD, A\nlog4cplus.appender.A=log4cplus::NullAppender\n";
  EXPECT_FALSE(ConfigureLogging(path, reason));
  EXPECT_THAT(reason, HasSubstr("no valid level"));
  log4cplus::Logger::getRoot().removeAllAppenders();
  std::remove(path.c_str());
  EXPECT_FALSE(IsLogEnabled(LogLevel::Info));
  testing::internal::CaptureStderr();
  TAL_LOG(Warn) << "still heard";
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("still heard"));
}

/// Whatever the file says, records are made, and what cannot be written harms nobody.
TEST(Logging, AFaultyConfigurationHarmsNobody) {
  const std::string path = Temporary("faulty.properties");
  const std::string toFile = "log4cplus.rootLogger=INFO, A\nlog4cplus.appender.A=log4cplus::FileAppender\n";
  const struct {
    std::string text;
    bool isUsable;
  } cases[] = {
      {std::string("\x7F"
                   "ELF\0\1\xFF=\n====\n\\",
                   16),
       false},
      {"log4cplus.rootLogger=" + std::string(100000, ','), false},
      {"log4cplus.rootLogger=INFO, A\n", false},
      {"log4cplus.rootLogger=INFO, A\nlog4cplus.appender.A=acme::NoSuchAppender\n", false},
      {toFile + "log4cplus.appender.A.layout=acme::NoSuchLayout\nlog4cplus.appender.A.File=/dev/null\n", false},
      {toFile, true},
      {toFile + "log4cplus.appender.A.File=/no/such/folder/x.log\n", true},
      {toFile + "log4cplus.appender.A.File=/\n", true},
      {toFile + "log4cplus.appender.A.File=/dev/full\nlog4cplus.appender.A.ImmediateFlush=true\n", true},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text.substr(0, 150));
    std::ofstream(path) << c.text;
    testing::internal::CaptureStderr();  // where log4cplus complains
    std::string reason;
    const bool isUsable = ConfigureLogging(path, reason);
    for (int i = 0; i < 3; ++i) TAL_LOG_AT(Error, kSite) << "a record";
    testing::internal::GetCapturedStderr();
    EXPECT_EQ(isUsable, c.isUsable);
    EXPECT_EQ(reason.empty(), c.isUsable) << reason;
    log4cplus::Logger::getRoot().removeAllAppenders();
    GetGlobalDefaultLogger().setLogLevel(static_cast<int>(LogLevel::Warn));
  }
  std::remove(path.c_str());
  testing::internal::CaptureStderr();
  TAL_LOG(Warn) << "still heard";
  EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("still heard"));
}

// In processes of their own: a configuration lasts as long as its process.
TEST(LoggingDeathTest, APropertiesFileDecidesLevelAndPlace) {
  const std::string path = Temporary("good.properties");
  const std::string appender =
      "log4cplus.appender.ERR=log4cplus::ConsoleAppender\nlog4cplus.appender.ERR.logToStdErr=true\n"
      "log4cplus.appender.ERR.layout=log4cplus::PatternLayout\n"
      "log4cplus.appender.ERR.layout.ConversionPattern=<%p %m>%n\n";
  std::ofstream(path) << "log4cplus.rootLogger=INFO, ERR\n" << appender;
  const auto log = [&](bool configured) {
    TAL_LOG_AT(Debug, kSite) << "too low";
    TAL_LOG_AT(Info, kSite) << "once";
    std::remove(path.c_str());  // this process made one of its own
    std::_Exit(configured ? 0 : 1);
  };
  std::string reason;
  EXPECT_EXIT(log(ConfigureLogging(path, reason)), testing::ExitedWithCode(0), "^<INFO ToKnxValue.*once>\n$");
  // An application may also configure log4cplus itself before the first record.
  EXPECT_EXIT((log4cplus::PropertyConfigurator::doConfigure(path), log(true)), testing::ExitedWithCode(0),
              "^<INFO ToKnxValue.*once>\n$");
  std::remove(path.c_str());
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
