#include <Tal/DscAsyncRequestMessenger.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <chrono>
#include <limits>
#include <set>
#include <stdexcept>

#include "Support/LogCapture.h"
#include "Support/ScriptedClient.h"
#include "Support/Values.h"

namespace TalTest {
namespace {

using boost::posix_time::milliseconds;
using boost::posix_time::time_duration;
using Handler = Vanta::IDeviceStackClient::IResponseHandler;
using PropertyType = Vanta::IDeviceStackClient::PropertyType;
using Step = ScriptedClient::Step;
using Steps = std::deque<Step>;
using Tal::Docket;
using testing::ElementsAre;

const time_duration kDefault;                               // zero
const time_duration kLong = boost::posix_time::minutes(5);  // no answer that is meant to come is waited for that long
const time_duration kShort = milliseconds(5);
constexpr char kOpen[] = "||invalid|open";  // a docket without an answer

ScriptedClient::Action Respond(const std::string& id, const std::string& text, int code = 0,
                               const std::string& description = "") {
  return [=](Handler& handler) { handler.OnResponse(nullptr, id, text, TestError(code, description)); };
}

/// "reply|error|valid|answered"
std::string Shown(const Docket& docket) {
  return docket.ReadReply() + '|' + docket.ReadDeliveryError() + (docket.IsReplyValid() ? "|valid" : "|invalid") +
         (docket.IsAnswered() ? "|answered" : "|open");
}
/// A messenger on a client with a script, registered as its response handler.
struct Rig {
  template <class Script>
  explicit Rig(Script script, time_duration timeout = kLong, unsigned retries = 0)
      : client(std::move(script)), adapter(client), messenger(adapter, timeout, retries) {
    messenger.SetAsResponseHandler();
  }
  ~Rig() {
    messenger.UnsetAsResponseHandler();
    client.Drain();  // of what still calls the messenger
  }
  Rig(const Rig&) = delete;
  Rig& operator=(const Rig&) = delete;

  /// Shows that no entry is left for @p id, and that the mutex is free.
  void ExpectNoDocket(const std::string& id) {
    const ScopedLogCapture log;
    client.Post(Respond(id, "too late"));
    client.Drain();
    EXPECT_THAT(log.Records().back().message, "No docket for response ID '" + id + "'");
  }

  /// What a call gives, and its records.
  template <class Call>
  std::vector<std::string> Told(Call call) {
    ScopedLogCapture log;
    const std::string docket = Shown(call(messenger));
    std::vector<std::string> told = log.Take();
    told.insert(told.begin(), docket);
    return told;
  }

  ScriptedClient client;
  Tal::RemoteRequestMessengerDeviceStack adapter;
  Tal::DscAsyncRequestMessenger messenger;
};

TEST(Docket, IsARecordOfItsOwn) {
  EXPECT_EQ(Shown(Docket()), kOpen);
  Docket docket("reply", "error", true, false);
  EXPECT_EQ(Shown(docket), "reply|error|valid|open");
  const Docket copy(docket);
  docket.SetContent("", "refused", false, true);
  EXPECT_EQ(Shown(docket), "|refused|invalid|answered");
  EXPECT_EQ(Shown(copy), "reply|error|valid|open");
}

TEST(Function, SharesItsCallableAndEndsTheProcessWhenEmpty) {
  Tal::function<int(int)> sum = [total = 0](int more) mutable { return total += more; };
  const auto copy = sum;
  EXPECT_EQ(sum(2), 2);
  EXPECT_EQ(copy(3), 5);
  EXPECT_DEATH(Tal::BoolReader()(), "TAL_ASSERT2.m_storage. failed");
}

TEST(Adapter, HandsEverythingToTheClient) {
  ScriptedClient client([](const std::string& call) { return Step{call == "Request refused" ? "" : "id", {}}; });
  Tal::RemoteRequestMessengerDeviceStack adapter(client);
  adapter.SetResponseHandler(nullptr);
  EXPECT_EQ(adapter.RegisterApplicationAsync("a", "b", "c"), "id");
  EXPECT_EQ(adapter.SetValueAsync(100101, Bool(true), true), "id");
  EXPECT_EQ(adapter.GetValueAsync(0xFFFFFFFF, true), "id");
  EXPECT_EQ(adapter.RequestAsync("text"), "id");
  EXPECT_EQ(adapter.SetConfigurationAsync("text"), "id");
  EXPECT_EQ(adapter.RequestAsync("refused"), "");
  EXPECT_TRUE(adapter.SetConfiguration(100100, {{PropertyType::Name, "lamp"}}));
  std::string config;
  EXPECT_TRUE(adapter.GetDeviceConfig(config, true));
  EXPECT_EQ(config, "true");
  EXPECT_FALSE(adapter.SetDeviceConfig({{"key", "value"}}));
  EXPECT_TRUE(adapter.EnableNativeFormat());
  EXPECT_EQ(boost::algorithm::join(client.Calls(), "; "),
            "SetResponseHandler none; RegisterApplication a b c; SetValue 100101 2:1 true; GetValue 4294967295 true; "
            "Request text; SetConfiguration text; Request refused; configure 100100 lamp; GetDeviceConfig; "
            "SetDeviceConfig value; SetValueFormat Native");
  if constexpr (sizeof(unsigned long) > 4) {  // object identifiers have 32 bits
    const unsigned long tooLarge = std::numeric_limits<unsigned long>::max();
    EXPECT_EQ(adapter.SetValueAsync(tooLarge, Bool(true), true), "");
    EXPECT_EQ(adapter.GetValueAsync(tooLarge, true), "");
    EXPECT_FALSE(adapter.SetConfiguration(tooLarge, {}));
    EXPECT_EQ(client.Calls().size(), 11u);
  }
}

TEST(Adapter, SerialisesValuesInTheFormInForceAndNanAsItsTwoTexts) {
  ScriptedClient client;
  Tal::RemoteRequestMessengerDeviceStack adapter(client);
  ScopedLogCapture log;
  const auto setAll = [&] {
    for (const char* value : {"nan", "3:21.5", "8=nan"}) adapter.SetValueAsync(1, Value(value), false);
  };
  setAll();
  adapter.EnableInternalValueFormat();
  adapter.EnableNativeFormat();  // does not change the form
  setAll();
  adapter.EnableDefaultValueFormat();
  setAll();
  EXPECT_EQ(
      boost::algorithm::join(client.Calls(), "; "),
      "SetValue 1 nan false; SetValue 1 3:21.5 false; SetValue 1 8:0 false; internal format; SetValueFormat Native; "
      "SetValue 1 3.7:nan false; SetValue 1 3.7:21.5 false; SetValue 1 8.7:0 false; default format; "
      "SetValue 1 nan false; SetValue 1 3:21.5 false; SetValue 1 8:0 false");
  EXPECT_THAT(log.Take(), ElementsAre("DEBUG Internal value format now enabled."));
}

TEST(Adapter, TellsTheClientOfAFormatBeforeItUsesIt) {
  ScriptedClient client;
  Tal::RemoteRequestMessengerDeviceStack adapter(client);
  client.onFormat = [&] { adapter.SetValueAsync(1, Bool(true), false); };
  adapter.EnableInternalValueFormat();
  adapter.EnableDefaultValueFormat();
  EXPECT_EQ(boost::algorithm::join(client.Calls(), "; "),
            "internal format; SetValue 1 2:1 false; default format; SetValue 1 2.7:1 false");
}

/// Every operation with its callback: what is sent, stored and logged when the answer is bad.
struct OperationCase {
  Docket (*call)(Tal::DscAsyncRequestMessenger&);
  void (*answer)(Handler&, const TestError&);
  const char* sent;
  const char* reply;
  const char* suffix;  ///< of the record
};
// clang-format off
const OperationCase kOperations[] = {
    {[](auto& m) { return m.Request("text", kDefault); },
     [](auto& h, auto& e) { h.OnResponse(nullptr, "id", "done", e); },
     "Request text", "done", "; response: done"},
    {[](auto& m) { return m.RegisterApplication("a", "b", "c"); },
     [](auto& h, auto& e) { h.OnRegisterApplication(nullptr, "id", e); },
     "RegisterApplication a b c", "", ""},
    {[](auto& m) { return m.Request("config", kDefault); },
     [](auto& h, auto& e) { h.OnGetConfiguration(nullptr, "id", "<c/>", e); },
     "Request config", "<c/>", "; config: <c/>"},
    {[](auto& m) { return m.SetConfiguration("text", kDefault, [] { return true; }); },
     [](auto& h, auto& e) { h.OnSetConfiguration(nullptr, "id", e); },
     "SetConfiguration text", "", ""},
    {[](auto& m) { return m.GetValue(100101, true); },
     [](auto& h, auto& e) { h.OnGetValue(nullptr, "id", 4294967295, "urn:x", "2:1", e); },
     "GetValue 100101 true", "2:1", "; id: 4294967295; urn: urn:x; value: 2:1"},
    {[](auto& m) { return m.SetValue(100101, Bool(true), false); },
     [](auto& h, auto& e) { h.OnSetValue(nullptr, "id", 7, "urn:x", "2:0", e); },
     "SetValue 100101 2:1 false", "2:0", "; id: 7; urn: urn:x; value: 2:0"},
};
// clang-format on

TEST(Messenger, StoresGoodAndBadAnswersOfEveryOperation) {
  for (const OperationCase& c : kOperations) {
    for (const int code : {0, 17, -1}) {
      const TestError error(code, code == 0 ? "" : "no such thing");
      Rig rig(Steps{{"id", [&](Handler& handler) { c.answer(handler, error); }}});
      ScopedLogCapture log;
      const Docket docket = c.call(rig.messenger);
      EXPECT_EQ(Shown(docket),
                std::string(c.reply) + '|' + (code == 0 ? "|valid" : "no such thing|invalid") + "|answered");
      EXPECT_THAT(rig.client.Calls().back(), c.sent);
      // The client's thread tells of the error before it waits for the mutex, so that record may be the first.
      const std::string failure =
          "ERROR ZEL error for request id: " + std::to_string(code) + "; first; second" + c.suffix;
      auto records = log.Take();
      const auto rest = std::remove(records.begin(), records.end(), failure);
      EXPECT_EQ(records.end() - rest, code != 0 ? 1 : 0) << failure;
      records.erase(rest, records.end());
      EXPECT_THAT(records, ElementsAre("DEBUG Request ID is 'id'", "DEBUG Got request for ID 'id'.",
                                       "DEBUG returned from waiting for response with ID 'id': got response"));
      rig.ExpectNoDocket("id");
    }
  }
}

TEST(Messenger, TriesAgainAfterEmptyIdsAndTimeoutsUntilItsAttemptsAreUsedUp) {
  const std::string empty = "ERROR Request ID is empty, retrying";
  const auto get = [](auto& messenger) { return messenger.GetValue(1, false); };
  Rig mute(Steps{}, kShort, 2);
  EXPECT_THAT(mute.Told(get),
              ElementsAre(kOpen, "DEBUG Request ID is ''", empty, "DEBUG Request ID is ''", empty,
                          "DEBUG Request ID is ''", empty, "ERROR Maximum number of retries (2) reached."));
  Rig slow(Steps{{"a", {}}}, kShort, 0);
  EXPECT_THAT(slow.Told(get),
              ElementsAre(kOpen, "DEBUG Request ID is 'a'", "WARN Timeout (00:00:00.005000) occured for request ID 'a'",
                          "ERROR No response received for ID 'a' with timeout 00:00:00, retrying",
                          "ERROR Maximum number of retries (0) reached."));
  EXPECT_EQ(slow.client.Calls().size(), 2u);
  slow.ExpectNoDocket("a");
  // Deliberate: all ones wrap to no attempt at all.
  Rig wrapped(Steps{{"a", {}}}, kShort, std::numeric_limits<unsigned>::max());
  EXPECT_THAT(wrapped.Told(get), ElementsAre(kOpen, "ERROR Maximum number of retries (4294967295) reached."));

  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  // The answer to the first comes late and is dropped; a second answer to the third changes nothing.
  const auto answers = [](Handler& handler) {
    for (const char* id : {"a", "c", "c"}) Respond(id, id)(handler);
  };
  Rig rig(Steps{{"a", {}}, {"", {}}, {"c", answers}}, kLong, 2);
  EXPECT_EQ(Shown(rig.messenger.Request("x", milliseconds(300))), "c||valid|answered");
  rig.client.Drain();
  for (const char* id : {"a", "c"}) rig.ExpectNoDocket(id);
}

TEST(Messenger, TakesTheDefaultForAZeroTimeoutAndNoneForAnInfiniteOrHugeOne) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  using namespace boost::posix_time;
  const time_duration huge = microseconds(std::numeric_limits<std::int64_t>::max() - 10);
  for (const auto& timeout : {kDefault, kLong, time_duration(pos_infin), huge}) {
    Rig rig(Steps{{"a", Respond("a", "done")}}, timeout == kDefault ? kLong : kShort);
    EXPECT_EQ(Shown(rig.messenger.Request("x", timeout)), "done||valid|answered") << timeout.total_microseconds();
  }
  for (const auto& over : {time_duration(milliseconds(-1)), time_duration(neg_infin), time_duration(not_a_date_time)}) {
    Rig rig(Steps{{"a", {}}});
    EXPECT_EQ(Shown(rig.messenger.Request("x", over)), kOpen);
  }
}

TEST(Messenger, LogsAnswersThatNobodyWaitsFor) {
  Rig rig(Steps{{"s", {}}});
  ScopedLogCapture log;
  EXPECT_TRUE(rig.messenger.SetValueAndIgnoreResponse(7, Bool(true), true));
  EXPECT_FALSE(rig.messenger.SetValueAndIgnoreResponse(7, Bool(true), true));
  rig.client.Post(Respond("s", "ok"));
  rig.client.Post(Respond("?", "text", 3, "unknown"));
  rig.client.Drain();
  EXPECT_THAT(log.Take(),
              ElementsAre("DEBUG Request ID is 's'", "DEBUG Request ID is ''", "DEBUG No docket for response ID 's'",
                          "ERROR ZEL error for request ?: 3; first; second; response: text",
                          "DEBUG No docket for response ID '?'", "ERROR Request ?: Error 'unknown'"));
}

TEST(Messenger, HoldsItsMutexWhileItSendsAValueWithoutWaiting) {
  ScopedLogCapture log;
  ScriptedClient* client = nullptr;
  Rig rig([&](const std::string&) {
    client->Post(Respond("s", "ok"));  // on the client's thread, which has to wait for the mutex
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(20);
    while (std::chrono::steady_clock::now() < end) std::this_thread::yield();
    EXPECT_THAT(log.Records(), testing::IsEmpty());
    return Step{"s", {}};
  });
  client = &rig.client;
  EXPECT_TRUE(rig.messenger.SetValueAndIgnoreResponse(7, Bool(true), true));
  rig.client.Drain();
  EXPECT_THAT(log.Take(), ElementsAre("DEBUG Request ID is 's'", "DEBUG No docket for response ID 's'"));
}

TEST(Messenger, NamesItsFunctionsInTheRecords) {
  Rig rig(Steps{{"a", {}}, {"b", Respond("b", "", 1)}}, kLong, 1);
  ScopedLogCapture log;
  rig.messenger.Request("x", milliseconds(50));
  rig.client.Drain();
  std::set<std::string> names;
  for (const Record& record : log.Records()) {
    names.insert(record.text.substr(0, record.text.find("(")) + ' ' + record.file);
  }
  EXPECT_THAT(names, testing::IsSupersetOf({"SynchronizeRequest TalObjectModel/DscAsyncRequestMessenger",
                                            "WaitForAnswer TalObjectModel/DscAsyncRequestMessenger",
                                            "OnResponse TalObjectModel/DscAsyncRequestMessenger",
                                            "UpdateDocketList TalObjectModel/DscAsyncRequestMessenger"}));
}

TEST(Messenger, PassesDirectCallsOnWithoutWaiting) {
  Rig rig(Steps{});
  EXPECT_EQ(Shown(rig.messenger.SetConfiguration(100100, {{PropertyType::Name, "lamp"}})), "||valid|answered");
  std::string config;
  EXPECT_TRUE(rig.messenger.GetDeviceConfig(config, false));
  EXPECT_EQ(config, "false");
  EXPECT_FALSE(rig.messenger.SetDeviceConfig({{"key", "value"}}));
  EXPECT_TRUE(rig.messenger.EnableNativeFormat());
}

TEST(Messenger, AsksThePredicateBeforeTheWaitAfterEachWakeUpAndOnceMore) {
  const char irrelevant[] = "DEBUG returned from waiting for response with ID 'a': !isStillRelevant";
  Rig aborted(Steps{{"a", {}}, {"b", {}}}, kLong, 3);
  EXPECT_THAT(aborted.Told([](auto& m) { return m.SetConfiguration("x", kDefault, [] { return false; }); }),
              ElementsAre(kOpen, "DEBUG Request ID is 'a'",
                          "INFO Aborted a ZEL request because its result is no longer relevant", irrelevant));
  EXPECT_EQ(aborted.client.Calls().size(), 2u);  // no further attempt
  aborted.ExpectNoDocket("a");

  // The answer is there, but the last question says that nobody wants it.
  Rig answered(Steps{{"a", Respond("a", "done")}});
  int asked = 0;
  const auto told =
      answered.Told([&](auto& m) { return m.SetConfiguration("x", kDefault, [&] { return ++asked < 3; }); });
  EXPECT_EQ(asked, 3);
  EXPECT_TRUE(told.front() == kOpen && told.back() == irrelevant);

  // Somebody else's answer wakes the waiter, which notices that its result is no longer wanted.
  Rig rig(Steps{{"a", {}}, {"b", Respond("b", "other")}});
  std::atomic<bool> isWanted{true};
  std::atomic<bool> isWaiting{false};
  std::string result;
  const auto predicate = [&]() -> bool {
    isWaiting = true;
    return isWanted;
  };
  std::thread waiter([&] { result = Shown(rig.messenger.SetConfiguration("x", kDefault, predicate)); });
  while (!isWaiting) std::this_thread::yield();
  isWanted = false;
  EXPECT_EQ(Shown(rig.messenger.Request("y", kDefault)), "other||valid|answered");
  waiter.join();
  EXPECT_EQ(result, kOpen);
}

TEST(Messenger, LetsWhatAPredicateThrowsOutAndLeavesNothingBehind) {
  for (int at = 1; at <= 3; ++at) {
    Rig rig(Steps{{"a", Respond("a", "done")}, {"b", Respond("b", "next")}});
    int asked = 0;
    const auto predicate = [&] { return ++asked == at ? throw std::runtime_error("predicate") : true; };
    EXPECT_THROW(rig.messenger.SetConfiguration("x", kDefault, predicate), std::runtime_error);
    rig.ExpectNoDocket("a");
    EXPECT_EQ(Shown(rig.messenger.Request("y", kDefault)), "next||valid|answered");
  }
}

TEST(Messenger, GivesEveryCallerItsOwnAnswer) {
  constexpr std::size_t kCallers = 32;
  for (const bool backwards : {false, true}) {
    std::vector<std::string> ids;  // the calls
    const auto answerAll = [&](Handler& handler) {
      if (backwards) std::reverse(ids.begin(), ids.end());
      for (const std::string& id : ids) Respond(id, "reply to " + id)(handler);
    };
    Rig rig([&](const std::string& call) {
      ids.push_back(call);
      return Step{call, ids.size() == kCallers ? ScriptedClient::Action(answerAll) : nullptr};
    });
    std::vector<std::thread> callers;
    for (std::size_t i = 0; i < kCallers; ++i) {
      callers.emplace_back([&rig, i, expected = "reply to GetValue " + std::to_string(i) + " false"] {
        EXPECT_EQ(rig.messenger.GetValue(i, false).ReadReply(), expected);
      });
    }
    for (std::thread& caller : callers) caller.join();
    for (const std::string& id : ids) rig.ExpectNoDocket(id);
  }
}

TEST(Messenger, SurvivesAServiceThatRepeatsIds) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  // Deliberate: the first owns the entry; whoever wakes first takes it away, so the answer may reach nobody.
  Rig rig(Steps{{"same", {}}, {"same", Respond("same", "done")}}, milliseconds(50));
  std::string results[2];
  std::thread first([&] { results[0] = Shown(rig.messenger.GetValue(1, false)); });
  while (rig.client.Calls().size() < 2) std::this_thread::yield();
  results[1] = Shown(rig.messenger.GetValue(2, false));
  first.join();
  EXPECT_THAT(results[0], testing::AnyOf("done||valid|answered", kOpen));
  EXPECT_EQ(results[1], kOpen);
  rig.ExpectNoDocket("same");
}

}  // namespace
}  // namespace TalTest
