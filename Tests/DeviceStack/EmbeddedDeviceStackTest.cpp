#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Knx/LoopbackBus.h>
#include <Knx/TelegramLog.h>
#include <Tal/DscAsyncRequestMessenger.h>
#include <gmock/gmock.h>

#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "Support/Cases.h"
#include "Support/LogCapture.h"
#include "Support/ScriptedClient.h"
#include "Support/Values.h"

namespace DeviceStack {
namespace {

using boost::algorithm::join;
using boost::posix_time::time_duration;
using Kind = Fault::Kind;
using PropertyType = Vanta::IDeviceStackClient::PropertyType;
using Tal::Docket;
using namespace TalTest;
using Knx::FormatTelegram;
using Knx::LoopbackBus;
using Knx::ParseTelegram;
using Knx::Telegram;

const time_duration kLong = boost::posix_time::minutes(5);

const std::string kHouse = ReadText("DeviceStack.txt", "house");
constexpr unsigned kLamp = 100101;

/// Keeps what is sent, and lets telegrams in.
class TestBus final : public Knx::Bus {
 public:
  bool Send(const Telegram& telegram, std::string& error) override {
    if (isBroken) throw std::runtime_error("broken");
    if (isCut) {
      error = "the line is cut";
      return false;
    }
    sent.push_back(FormatTelegram(telegram).substr(25));
    return true;
  }
  void SetReceiver(Receiver receiver) override { m_receiver = std::move(receiver); }
  void Hear(const std::string& line) {
    Telegram telegram;
    std::string error;
    EXPECT_TRUE(ParseTelegram("2026-11-21T06:30:00Z 1.1.1 " + line, telegram, error)) << error;
    m_receiver(telegram);
  }
  std::vector<std::string> sent;
  std::atomic<bool> isCut{false};
  std::atomic<bool> isBroken{false};

 private:
  Receiver m_receiver;
};

/// "reply" of a good answer, "Code: description" of a bad one, "none".
std::string Shown(const Docket& docket) {
  if (!docket.IsAnswered()) return "none";
  return docket.IsReplyValid() ? docket.ReadReply() : "error: " + docket.ReadDeliveryError();
}

/// "key=value; key=value"
std::map<std::string, std::string> Entries(const std::string& text) {
  std::map<std::string, std::string> entries;
  std::istringstream in(text);
  for (std::string key, value; std::getline(in >> std::ws, key, '=') && std::getline(in, value, ';');)
    entries[key] = value;
  return entries;
}

class EmbeddedDeviceStackTest : public testing::Test {
 protected:
  EmbeddedDeviceStackTest()
      : stack(ParseInstallation(kHouse, "test"), bus), adapter(stack), messenger(adapter, kLong, 0) {
    messenger.SetAsResponseHandler();
    stack.SetListener([this](const BusEvent& event) {
      constexpr const char* kKinds[] = {"received", "read", "sent", "refused", "ignored"};
      events.push_back(
          std::string(kKinds[static_cast<int>(event.kind)]) + (event.object ? ' ' + event.object->name : "") +
          (event.value ? ' ' + event.value->ToString() : "") + (event.reason.empty() ? "" : ": " + event.reason));
    });
  }
  ~EmbeddedDeviceStackTest() override { messenger.UnsetAsResponseHandler(); }

  /// A line of a conversation in DeviceStack.txt. @return the answer.
  std::string Say(const std::string& line) {
    static const std::map<std::string, unsigned> names = {
        {"lamp", kLamp}, {"temperature", 100103}, {"date", 200101}, {"silent", 200103}};
    std::istringstream words(line);
    std::string verb;
    std::string object;
    words >> verb >> object;
    const std::string text = line.substr(std::min(verb.size() + 1, line.size()));
    const auto id = [&] { return names.count(object) == 1 ? names.at(object) : std::stoul(object); };
    if (verb == "register") return Shown(messenger.RegisterApplication(text, "b", "c"));
    if (verb == "request") return Shown(messenger.Request(text, kLong));
    if (verb == "configure") return Shown(messenger.SetConfiguration(text, kLong, [] { return true; }));
    if (verb == "get") return Shown(messenger.GetValue(id(), false));
    if (verb == "set") return Shown(messenger.SetValue(id(), Value(text.substr(object.size() + 1)), false));
    if (verb == "hear") bus.Hear(text);
    if (verb == "hear") stack.WaitUntilIdle();
    if (verb == "hear" || verb == "events") return join(std::exchange(events, {}), " / ");
    if (verb == "sent") return join(std::exchange(bus.sent, {}), " / ");
    if (verb == "cut") return bus.isCut = true, "";
    if (verb == "break") return bus.isBroken = true, "";
    if (verb == "internal") return adapter.EnableInternalValueFormat(), "";
    if (verb == "device") return stack.SetDeviceConfig(Entries(text)) ? "done" : "refused";
    if (verb == "change") {
      static const std::map<std::string, unsigned> types = {{"name", 1},  {"dpt", 2},     {"groupAddress", 3},
                                                            {"flags", 4}, {"initial", 5}, {"colour", 99}};
      std::map<PropertyType, std::string> properties;
      for (const auto& [name, value] : Entries(text.substr(object.size()))) {
        properties[static_cast<PropertyType>(types.at(name))] = value;
      }
      return stack.SetConfiguration(static_cast<unsigned>(id()), properties) ? "done" : "refused";
    }
    ADD_FAILURE() << "nobody can " << verb;
    return "";
  }
  void Converse(const std::string& section) {
    ForEachCase("DeviceStack.txt", section, [&](const Case& c) { EXPECT_THAT(Say(c[0]), Is(c[1])); });
  }

  ScopedLogCapture quiet{Tal::LogLevel::Fatal};
  TestBus bus;
  EmbeddedDeviceStack stack;
  Tal::RemoteRequestMessengerDeviceStack adapter;
  Tal::DscAsyncRequestMessenger messenger;
  std::vector<std::string> events;
};

TEST_F(EmbeddedDeviceStackTest, WantsAnApplicationFirst) { Converse("an application is needed first"); }
TEST_F(EmbeddedDeviceStackTest, SendsAndStoresWhatIsSet) { Converse("what is set is sent and stored"); }
TEST_F(EmbeddedDeviceStackTest, KeepsParametersAndControlValuesOfTheirTypes) {
  Converse("parameters and control values keep their types");
}
TEST_F(EmbeddedDeviceStackTest, SaysWhyItRefusesAndChangesNothing) { Converse("what is refused changes nothing"); }
TEST_F(EmbeddedDeviceStackTest, TakesFromTheBusWhatTheFlagsLetIn) {
  Converse("the flags say what is taken from the bus");
}
TEST_F(EmbeddedDeviceStackTest, TakesABusThatThrowsForOneThatDoesNotSend) {
  Converse("a bus that throws does not send");
}
TEST_F(EmbeddedDeviceStackTest, AnswersRequestsInJson) { Converse("requests are in JSON"); }

TEST_F(EmbeddedDeviceStackTest, KnowsOneValueFormat) {
  EXPECT_TRUE(stack.SetValueFormat("Native"));
  EXPECT_FALSE(stack.SetValueFormat("native"));
}

TEST_F(EmbeddedDeviceStackTest, IsConfiguredAllOrNothing) {
  const auto config = [this] {
    std::string text;
    EXPECT_TRUE(stack.GetDeviceConfig(text, false));
    return text;
  };
  const std::string before = FormatInstallation(ParseInstallation(kHouse, ""));
  Converse("nothing is configured");
  EXPECT_EQ(config(), before);
  Converse("all is configured");
  EXPECT_EQ(Say("configure " + kHouse), "");
  EXPECT_EQ(Say("get lamp"), "2:0");
  EXPECT_EQ(config(), before);
}

TEST_F(EmbeddedDeviceStackTest, FailsAsItIsToldTo) {
  Say("register test");
  std::vector<Fault> plan;
  std::vector<Operation> asked;
  stack.SetFaultPlan([&](Operation operation) {
    asked.push_back(operation);
    const Fault fault = plan.empty() ? Fault() : plan.front();
    if (!plan.empty()) plan.erase(plan.begin());
    return fault;
  });
  Tal::DscAsyncRequestMessenger patient(adapter, boost::posix_time::milliseconds(200), 2);
  patient.SetAsResponseHandler();
  const auto delayed = [](int ms) { return Fault{Kind::None, std::chrono::milliseconds(ms)}; };
  const struct {
    std::vector<Fault> faults;
    const char* answer;
    std::size_t asked;
  } cases[] = {
      {{{Kind::Error, {}}}, "error: this request fails because a test wants it to", 1},
      {{{Kind::EmptyId, {}}, {Kind::EmptyId, {}}, {Kind::Duplicate, {}}}, "2:0", 3},
      {{{Kind::Drop, {}}}, "2:0", 2},
      {{{Kind::Late, {}}, delayed(1)}, "2:0", 2},
      {{delayed(60000), {Kind::Drop, {}}, {Kind::Drop, {}}}, "none", 3}};  // the first never comes in this test
  for (const auto& c : cases) {
    plan = c.faults;
    asked.clear();
    EXPECT_EQ(Shown(patient.GetValue(kLamp, false)), c.answer);
    EXPECT_EQ(asked.size(), c.asked) << c.answer;
  }
  plan = {{Kind::Drop, {}}};
  asked.clear();
  EXPECT_EQ(Shown(patient.SetValue(kLamp, Bool(true), false)), "2:1");  // done twice
  EXPECT_EQ(bus.sent.size(), 2u);
  EXPECT_THAT(asked, testing::ElementsAre(Operation::SetValue, Operation::SetValue));
  patient.UnsetAsResponseHandler();
}

/// Calls @p on for every answer.
struct Listening final : Vanta::IDeviceStackClient::IResponseHandler {
  using Id = Vanta::IDeviceStackClient::AROOBJECTID;
  using Text = std::string;
  using E = Vanta::IDeviceStackClient::IError;
  explicit Listening(std::function<void(void* context)> o) : on(std::move(o)) {}
  void OnResponse(void* c, const Text&, const Text&, const E&) override { on(c); }
  void OnRegisterApplication(void* c, const Text&, const E&) override { on(c); }
  void OnGetConfiguration(void* c, const Text&, const Text&, const E&) override { on(c); }
  void OnSetConfiguration(void* c, const Text&, const E&) override { on(c); }
  void OnGetValue(void* c, const Text&, Id, const Text&, const Text&, const E&) override { on(c); }
  void OnSetValue(void* c, const Text&, Id, const Text&, const Text&, const E&) override { on(c); }
  std::function<void(void*)> on;
};

TEST(EmbeddedDeviceStack, MakesNoCallbackAfterItsHandlerIsTakenOff) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  LoopbackBus bus;
  for (int round = 0; round < 200; ++round) {
    EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
    std::atomic<bool> isGone{false};
    std::atomic<int> calls{0};
    int context = 0;
    auto handler = std::make_unique<Listening>([&](void* c) {
      EXPECT_FALSE(isGone);
      EXPECT_EQ(c, &context);
      ++calls;
    });
    stack.SetResponseHandler(handler.get(), &context);
    for (int i = 0; i < 50; ++i) stack.GetValue(kLamp, false);
    while (round % 2 == 0 && calls < round % 50) std::this_thread::yield();
    stack.SetResponseHandler(nullptr, nullptr);
    isGone = true;
    handler.reset();
    if (round % 3 == 0) stack.Stop();
  }
}

TEST(EmbeddedDeviceStack, MakesNoCallbackAfterItWasStoppedInOne) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  for (const bool inListener : {false, true}) {
    LoopbackBus bus;
    EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
    std::atomic<int> calls{0};
    std::atomic<bool> isDone{false};
    const auto stopIf = [&](bool isTime) {
      if (isTime) stack.Stop();
      if (isTime) isDone = true;
    };
    Listening handler([&](void*) { stopIf(++calls == 2 && !inListener); });
    stack.SetResponseHandler(&handler, nullptr);
    stack.SetListener([&](const BusEvent&) { stopIf(inListener); });
    stack.RegisterApplication("a", "", "");
    stack.SetFaultPlan([](Operation) { return Fault{Kind::Duplicate, {}}; });
    stack.SetValue(kLamp, "2:1", false, nullptr);
    while (!isDone) std::this_thread::yield();
    stack.Stop();
    EXPECT_EQ(calls, inListener ? 1 : 2);
    EXPECT_EQ(stack.GetValue(kLamp, false), "");
    EXPECT_EQ(stack.GetCounters().requests, 2u);
  }
}

TEST(EmbeddedDeviceStack, LeavesItsBusToTheNext) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  TestBus bus;
  auto first = std::make_unique<EmbeddedDeviceStack>(ParseInstallation(kHouse, ""), bus);
  first->Stop();
  EmbeddedDeviceStack second(ParseInstallation(kHouse, ""), bus);
  first.reset();
  bus.Hear("1/0/1 write 1 01");
  second.WaitUntilIdle();
  EXPECT_EQ(second.GetCounters().valuesDecoded, 2u);
}

TEST_F(EmbeddedDeviceStackTest, GoesOnWhenAListenerThrows) {
  Say("register test");
  stack.SetListener([](const BusEvent&) { throw 7; });
  EXPECT_EQ(Say("set lamp 2:1"), "2:1");
  EXPECT_EQ(Say("get lamp"), "2:1");
}

TEST(EmbeddedDeviceStack, MayBeUsedFromItsCallbacksAndStoppedInAnyState) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  LoopbackBus bus;
  EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
  std::atomic<int> calls{0};
  Listening handler([&](void*) {
    std::string config;
    stack.GetDeviceConfig(config, false);
    stack.WaitUntilIdle();
    stack.SetListener(nullptr);
    if (++calls < 5) {
      EXPECT_NE(stack.SetValue(kLamp, "2:1", false, nullptr), "");
    } else {
      stack.SetResponseHandler(nullptr, nullptr);
      stack.Stop();
    }
    throw std::runtime_error("a callback that throws");
  });
  stack.SetResponseHandler(&handler, nullptr);
  EXPECT_NE(stack.RegisterApplication("a", "", ""), "");
  while (calls < 5) std::this_thread::yield();
  stack.Stop();
  stack.Stop();
  EXPECT_EQ(stack.GetValue(kLamp, false), "");
  stack.WaitUntilIdle();
}

/// Eight threads, random faults: every request ends in its own answer or in none.
TEST(EmbeddedDeviceStack, MixesUpNoAnswerUnderLoad) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  constexpr int kThreads = 8;
  constexpr int kRequests = 12500;  // in each thread
  LoopbackBus bus;
  EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
  Tal::RemoteRequestMessengerDeviceStack adapter(stack);
  Tal::DscAsyncRequestMessenger messenger(adapter, boost::posix_time::milliseconds(20), 1);
  messenger.SetAsResponseHandler();
  ASSERT_TRUE(messenger.RegisterApplication("load", "", "").IsAnswered());
  std::mt19937 random(1);
  stack.SetFaultPlan([&](Operation) {  // called one at a time
    constexpr Kind kRare[] = {Kind::Drop, Kind::Late};
    constexpr Kind kOften[] = {Kind::Duplicate, Kind::EmptyId, Kind::Error};
    const auto rare = random() % 400;
    const auto often = random() % 20;
    if (rare == 2) return Fault{Kind::None, std::chrono::milliseconds(random() % 40)};
    return Fault{rare < 2 ? kRare[rare] : often < 3 ? kOften[often] : Kind::None, {}};
  });
  std::atomic<int> good{0};
  std::atomic<int> bad{0};
  std::atomic<int> open{0};
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int i = 0; i < kRequests; ++i) {
        // A text parameter of its own for every thread, a number of its own for every request.
        const unsigned long id = 180001 + 2 * static_cast<unsigned long>(t + 1);
        const std::string text = std::to_string(t) + '/' + std::to_string(i);
        const Docket docket = messenger.SetValue(id, Text(text), false);
        const bool isRight = docket.ReadReply() == "10:" + text;
        ++(!docket.IsAnswered() ? open : !docket.IsReplyValid() ? bad : isRight ? good : wrong);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(good + bad + open, kThreads * kRequests);
  EXPECT_GT(good, kThreads * kRequests / 2);
  EXPECT_GT(bad, 0);
  // No id of the past is waited for any more.
  stack.SetFaultPlan(nullptr);
  const auto last = std::stoull(stack.GetValue(kLamp, false));
  stack.WaitUntilIdle();
  ScopedLogCapture log;
  for (auto id = last; id > 0; --id) messenger.OnResponse(nullptr, std::to_string(id), "", TestError(0, ""));
  for (const std::string& line : log.Take()) ASSERT_THAT(line, testing::StartsWith("DEBUG No docket for response ID"));
  messenger.UnsetAsResponseHandler();
}

}  // namespace
}  // namespace DeviceStack
