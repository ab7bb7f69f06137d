#include <DeviceStack/EmbeddedDeviceStack.h>
#include <DeviceStack/LoopbackBus.h>
#include <DeviceStack/TelegramLog.h>
#include <Tal/DscAsyncRequestMessenger.h>
#include <gmock/gmock.h>

#include <atomic>
#include <boost/algorithm/string/join.hpp>
#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <random>
#include <thread>

#include "Support/LogCapture.h"
#include "Support/Values.h"

namespace DeviceStack {
namespace {

using boost::posix_time::time_duration;
using Kind = Fault::Kind;
using PropertyType = Vanta::IDeviceStackClient::PropertyType;
using Tal::Docket;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using namespace TalTest;

const time_duration kLong = boost::posix_time::minutes(5);

constexpr char kHouse[] = R"({"name": "house", "address": "1.1.250", "objects": [
  {"device": 1, "number": 1, "name": "lamp", "dpt": "1.001", "groupAddress": "1/0/1",
   "flags": ["read", "write", "transmit", "update"], "initial": false},
  {"device": 1, "number": 2, "name": "temperature", "dpt": "9.001", "groupAddress": "1/0/2", "flags": ["update"]},
  {"device": 1, "number": 3, "name": "lamp status", "dpt": "1.001", "groupAddress": "1/0/1", "flags": ["write"]},
  {"device": 2, "number": 1, "name": "date", "dpt": "11.001", "groupAddress": "1/0/3", "flags": ["write", "transmit"]},
  {"device": 2, "number": 2, "name": "silent", "dpt": "5.001", "groupAddress": "1/0/4", "flags": ["write"]},
  {"device": 2, "number": 3, "name": "unread", "dpt": "9.001", "groupAddress": "1/0/5", "flags": ["read"]}]})";
constexpr unsigned kLamp = 100101;
constexpr unsigned kTemperature = 100103;
constexpr unsigned kDate = 200101;
constexpr unsigned kSilent = 200103;

/// Keeps what is sent, and lets telegrams in.
class TestBus final : public KnxBus {
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

  void Register() { EXPECT_EQ(Shown(messenger.RegisterApplication("test", "", "")), ""); }
  std::string Get(unsigned long id) { return Shown(messenger.GetValue(id, false)); }
  std::string Set(unsigned long id, const AROVALUE& value) { return Shown(messenger.SetValue(id, value, false)); }
  std::vector<std::string> Heard(const std::string& line) {
    bus.Hear(line);
    stack.WaitUntilIdle();
    return std::exchange(events, {});
  }

  ScopedLogCapture quiet{Tal::LogLevel::Fatal};
  TestBus bus;
  EmbeddedDeviceStack stack;
  Tal::RemoteRequestMessengerDeviceStack adapter;
  Tal::DscAsyncRequestMessenger messenger;
  std::vector<std::string> events;
};

TEST_F(EmbeddedDeviceStackTest, WantsAnApplicationFirst) {
  const std::string reason = "error: no application is registered: register one first";
  EXPECT_EQ(Get(kLamp), reason);
  EXPECT_EQ(Set(kLamp, Bool(true)), reason);
  EXPECT_EQ(Shown(messenger.Request("{}", kLong)), reason);
  EXPECT_EQ(Shown(messenger.SetConfiguration(kHouse, kLong, [] { return true; })), reason);
  EXPECT_EQ(Shown(messenger.RegisterApplication("", "b", "c")),
            "error: an application needs a name: the first text is empty");
  Register();
  EXPECT_EQ(Get(kLamp), "2:0");
  EXPECT_TRUE(bus.sent.empty());
}

TEST_F(EmbeddedDeviceStackTest, SendsAndStoresWhatIsSet) {
  Register();
  EXPECT_EQ(Set(kLamp, Bool(true)), "2:1");
  EXPECT_EQ(Get(kLamp), "2:1");
  EXPECT_EQ(Set(kSilent, Byte(7)), "6:7");  // does not transmit
  EXPECT_EQ(Get(kSilent), "6:7");
  EXPECT_EQ(Set(kDate, Timed(avtDate, Time(2026, 11, 21, 0, 0, 0))), "11:2026 11 21 0 0 0 0 0 0 0 0");
  EXPECT_THAT(bus.sent, ElementsAre("1.1.250 1/0/1 write 1 01", "1.1.250 1/0/3 write 24 150B1A"));
  EXPECT_THAT(events, ElementsAre("sent lamp 1", "sent date 2026 11 21 0 0 0 0 0 0 0 0"));
  adapter.EnableInternalValueFormat();
  EXPECT_EQ(Get(kLamp), "2.7:1");
  EXPECT_EQ(Set(kTemperature, Float(std::numeric_limits<double>::quiet_NaN())), "3.7:nan");
  EXPECT_TRUE(stack.SetValueFormat("Native"));
  EXPECT_FALSE(stack.SetValueFormat("native"));
}

TEST_F(EmbeddedDeviceStackTest, KeepsParametersAndControlValuesOfTheirTypes) {
  Register();
  const struct {
    unsigned id;
    const char* initial;
    AROVALUE value;
    const char* text;
  } cases[] = {{160003, "10:", Text("10.0.0.1"), "10:10.0.0.1"},
               {270401, "3:0", Float(1.5), "3:1.5"},
               {281001, "10:", Text("x"), "10:x"},
               {100021, "10:", Text("run"), "10:run"},
               {200023, "8:0", DWord(9), "8:9"},
               {100024, "2:0", Bool(true), "2:1"}};
  for (const auto& c : cases) {
    EXPECT_EQ(Get(c.id), c.initial) << c.id;
    EXPECT_EQ(Set(c.id, c.value), c.text) << c.id;
    EXPECT_EQ(Get(c.id), c.text) << c.id;
  }
  EXPECT_TRUE(bus.sent.empty());
}

TEST_F(EmbeddedDeviceStackTest, SaysWhyItRefusesAndChangesNothing) {
  Register();
  const auto unknown = [](const std::string& id) {
    return "error: there is no object " + id + " in this installation";
  };
  EXPECT_EQ(Get(42), unknown("42"));
  EXPECT_EQ(Get(100105 + 8000), unknown("108105"));
  EXPECT_EQ(Get(kLamp - 1),
            "error: 100100 is the channel of communication object 1 of logical device 1: its value is 100101");
  EXPECT_EQ(Get(1000), "error: 1000 has no value: it is the device, and the KNX device");
  EXPECT_EQ(Get(kTemperature),
            "error: 'temperature' (100103, 9.001) has no value yet: it has neither been set nor received");
  EXPECT_EQ(Set(42, Bool(true)), unknown("42"));
  EXPECT_EQ(Set(kLamp, Float(1)), "error: 'lamp' (100101, 1.001) takes values of type Bool (2), not Float (3)");
  EXPECT_EQ(
      Set(270401, Bool(true)),
      "error: the value of number parameter 200 of logical device 2 takes values of type Float (3), not Bool (2)");
  EXPECT_THAT(Set(kTemperature, Float(1e6)),
              StartsWith("error: '1e+06' cannot be sent as 9.001: expected a number from -671088.64"));
  EXPECT_THAT(Set(kDate, Timed(avtDate, Time(2026, 2, 29, 0, 0, 0))),
              StartsWith("error: '2026-02-29' cannot be sent as 11.001"));
  EXPECT_THAT(Shown(messenger.GetValue(kDate, false)), HasSubstr("has no value yet"));
  bus.isCut = true;
  EXPECT_EQ(Set(kLamp, Bool(true)), "error: the telegram could not be sent: the line is cut");
  EXPECT_EQ(Get(kLamp), "2:0");
  EXPECT_TRUE(bus.sent.empty() && events.empty());
}

TEST_F(EmbeddedDeviceStackTest, TakesFromTheBusWhatTheFlagsLetIn) {
  Register();
  EXPECT_THAT(Heard("1/0/1 write 6 01"), ElementsAre("received lamp 1", "received lamp status 1"));
  EXPECT_THAT(Heard("1/0/1 response 1 00"), ElementsAre("received lamp 0"));
  EXPECT_THAT(Heard("1/0/2 write 16 0C1A"), ElementsAre("ignored"));
  EXPECT_THAT(Heard("1/0/2 response 16 0C1A"), ElementsAre("received temperature 21"));
  EXPECT_THAT(Heard("9/0/1 write 8 00"), ElementsAre("ignored"));
  EXPECT_THAT(Heard("1/0/2 response 8 15"),
              ElementsAre("refused temperature: 15 (8 bits) is no value of 9.001, which has 16 bits"));
  EXPECT_THAT(Heard("1/0/3 write 24 1F0417"), ElementsAre(StartsWith("refused date: 1F0417")));  // 31 April
  EXPECT_THAT(Heard("1/0/3 write 24 150B58"), ElementsAre(StartsWith("refused date: 150B58")));  // 2088, past the clock
  EXPECT_EQ(Get(kTemperature), "3:21");
  EXPECT_THAT(Heard("1/0/1 read 0 -"), ElementsAre("read lamp", "sent lamp 0"));
  EXPECT_THAT(Heard("1/0/4 read 0 -"), ElementsAre("ignored"));
  EXPECT_THAT(Heard("1/0/5 read 0 -"), ElementsAre("ignored"));  // no value yet
  EXPECT_THAT(bus.sent, ElementsAre("1.1.250 1/0/1 response 1 00"));
  bus.isCut = true;
  EXPECT_THAT(Heard("1/0/1 read 0 -"), ElementsAre("read lamp", "refused lamp: not sent: the line is cut"));
  const Counters counters = stack.GetCounters();
  EXPECT_EQ(counters.telegramsReceived, 12u);
  EXPECT_EQ(counters.telegramsIgnored, 4u);
  EXPECT_EQ(counters.valuesDecoded, 4u);
  EXPECT_EQ(counters.valuesRefused, 3u);
  EXPECT_EQ(counters.telegramsSent, 1u);
}

TEST_F(EmbeddedDeviceStackTest, AnswersRequestsInJson) {
  Register();
  const auto ask = [this](const std::string& text) { return Shown(messenger.Request(text, kLong)); };
  EXPECT_EQ(
      ask(R"({"request": "describe", "object": "lamp"})"),
      R"({"id":100101,"kind":"co-value","device":1,"number":1,"name":"lamp","dpt":"1.001","groupAddress":"1/0/1",)"
      R"("flags":["read","write","transmit","update"],"value":false})");
  EXPECT_EQ(ask(R"({"request": "describe", "id": 100100})"), ask(R"({"request": "describe", "object": "lamp"})"));
  EXPECT_EQ(
      ask(R"({"request": "describe", "id": 281001})"),
      R"({"id":281001,"kind":"parameter-value","text":"value of text parameter 500 of logical device 2","value":""})");
  EXPECT_THAT(ask(R"({"request": "list"})"), StartsWith(R"({"installation":"house","objects":[{"id":100101,)"));
  EXPECT_THAT(ask(R"({"request": "counters"})"), StartsWith(R"({"requests":7,"answered":6,"errors":0,)"));
  const std::string expected = "expected {\"request\": ...} with list, describe or counters";
  const std::pair<const char*, std::string> bad[] = {
      {"list", "the request is not JSON: "},
      {"[[[[[]]]]]", "the request is nested deeper than 4 levels"},
      {"[]", "the request has no name: " + expected},
      {R"({"request": 7})", "the request has no name: " + expected},
      {R"({"request": "List"})", "there is no request 'List': " + expected},
      {R"({"request": "list", "id": 7})", "list has no key 'id'"},
      {R"({"request": "describe"})", "expected either 'object' with a name, or 'id'"},
      {R"({"request": "describe", "id": -1})", "'id' is wrong: expected a whole number from 0 to 4294967295"},
      {R"({"request": "describe", "id": 42})", "there is no object 42 in this installation"},
      {R"({"request": "describe", "object": "x\n"})", "there is no object 'x\\n' in this installation"},
  };
  for (const auto& [text, reason] : bad) EXPECT_THAT(ask(text), StartsWith("error: " + reason)) << text;
}

TEST_F(EmbeddedDeviceStackTest, IsConfiguredAllOrNothing) {
  Register();
  const auto always = [] { return true; };
  EXPECT_EQ(Set(kLamp, Bool(true)), "2:1");
  EXPECT_EQ(Shown(messenger.SetConfiguration("{}", kLong, always)), "error: configuration: the key 'name' is missing");
  std::string before;
  EXPECT_TRUE(stack.GetDeviceConfig(before, false));
  EXPECT_EQ(before, FormatInstallation(ParseInstallation(kHouse, "")));

  EXPECT_FALSE(stack.SetConfiguration(42, {}));
  EXPECT_FALSE(stack.SetConfiguration(kLamp, {{PropertyType::Name, "x"}, {PropertyType::GroupAddress, "0"}}));
  EXPECT_FALSE(stack.SetConfiguration(kLamp, {{static_cast<PropertyType>(99), "x"}}));
  EXPECT_FALSE(stack.SetConfiguration(kLamp, {{PropertyType::Name, "date"}}));
  EXPECT_FALSE(stack.SetDeviceConfig({{"name", "x"}, {"address", "300"}}));
  EXPECT_FALSE(stack.SetDeviceConfig({{"objects", "x"}}));
  EXPECT_FALSE(stack.SetDeviceConfig({{"name", "\xFF"}}));
  std::string after;
  stack.GetDeviceConfig(after, true);
  EXPECT_EQ(after, before);

  EXPECT_TRUE(stack.SetConfiguration(
      kLamp - 1,
      {{PropertyType::Name, "light"}, {PropertyType::GroupAddress, "2/0/1"}, {PropertyType::Flags, "read transmit"}}));
  EXPECT_TRUE(stack.SetDeviceConfig({{"name", "new"}, {"address", "2.2.2"}}));
  EXPECT_EQ(Get(kLamp), "2:1");  // keeps its value
  EXPECT_EQ(Set(kLamp, Bool(false)), "2:0");
  EXPECT_EQ(bus.sent.back(), "2.2.2 2/0/1 write 1 00");
  EXPECT_TRUE(
      stack.SetConfiguration(kLamp, {{PropertyType::DatapointType, "5.001"}, {PropertyType::InitialValue, "9"}}));
  EXPECT_EQ(Get(kLamp), "6:9");

  EXPECT_EQ(Shown(messenger.SetConfiguration(kHouse, kLong, always)), "");
  EXPECT_EQ(Get(kLamp), "2:0");
  stack.GetDeviceConfig(after, false);
  EXPECT_EQ(after, before);
}

TEST_F(EmbeddedDeviceStackTest, FailsAsItIsToldTo) {
  Register();
  std::vector<Fault> plan;
  std::vector<Operation> asked;
  const auto use = [&](std::vector<Fault> faults) {
    plan = std::move(faults);
    asked.clear();
  };
  stack.SetFaultPlan([&](Operation operation) {
    asked.push_back(operation);
    if (plan.empty()) return Fault();
    const Fault fault = plan.front();
    plan.erase(plan.begin());
    return fault;
  });
  Tal::DscAsyncRequestMessenger patient(adapter, boost::posix_time::milliseconds(200), 2);
  patient.SetAsResponseHandler();
  const auto get = [&] { return Shown(patient.GetValue(kLamp, false)); };
  const auto delayed = [](int ms) { return Fault{Kind::None, std::chrono::milliseconds(ms)}; };
  use({{Kind::Error, {}}});
  EXPECT_EQ(get(), "error: this request fails because a test wants it to");
  use({{Kind::EmptyId, {}}, {Kind::EmptyId, {}}, {Kind::Duplicate, {}}});
  EXPECT_EQ(get(), "2:0");
  EXPECT_EQ(asked.size(), 3u);
  use({{Kind::Drop, {}}});
  EXPECT_EQ(get(), "2:0");
  EXPECT_EQ(asked.size(), 2u);
  use({{Kind::Late, {}}, delayed(1)});
  EXPECT_EQ(get(), "2:0");
  EXPECT_EQ(asked.size(), 2u);
  use({delayed(60000), {Kind::Drop, {}}, {Kind::Drop, {}}});  // the first answer never comes in this test
  EXPECT_EQ(get(), "none");
  use({{Kind::Drop, {}}});
  EXPECT_EQ(Shown(patient.SetValue(kLamp, Bool(true), false)), "2:1");  // done twice
  EXPECT_EQ(bus.sent.size(), 2u);
  EXPECT_THAT(asked, ElementsAre(Operation::SetValue, Operation::SetValue));
  patient.UnsetAsResponseHandler();
}

/// Calls @p on for every answer.
struct Listening final : Vanta::IDeviceStackClient::IResponseHandler {
  using AROOBJECTID = Vanta::IDeviceStackClient::AROOBJECTID;
  using IError = Vanta::IDeviceStackClient::IError;
  explicit Listening(std::function<void(void*, const std::string&)> o) : on(std::move(o)) {}
  void OnResponse(void* c, const std::string& id, const std::string&, const IError&) override { on(c, id); }
  void OnRegisterApplication(void* c, const std::string& id, const IError&) override { on(c, id); }
  void OnGetConfiguration(void* c, const std::string& id, const std::string&, const IError&) override { on(c, id); }
  void OnSetConfiguration(void* c, const std::string& id, const IError&) override { on(c, id); }
  void OnGetValue(void* c, const std::string& id, AROOBJECTID, const std::string&, const std::string&,
                  const IError&) override {
    on(c, id);
  }
  void OnSetValue(void* c, const std::string& id, AROOBJECTID, const std::string&, const std::string&,
                  const IError&) override {
    on(c, id);
  }
  std::function<void(void*, const std::string&)> on;
};

TEST(EmbeddedDeviceStack, MakesNoCallbackAfterItsHandlerIsTakenOff) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  LoopbackBus bus;
  for (int round = 0; round < 200; ++round) {
    EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
    std::atomic<bool> isGone{false};
    std::atomic<int> calls{0};
    int context = 0;
    auto handler = std::make_unique<Listening>([&](void* c, const std::string&) {
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
    const auto stop = [&] {
      stack.Stop();
      isDone = true;
    };
    Listening handler([&](void*, const std::string&) {
      if (++calls == 2 && !inListener) stop();
    });
    stack.SetResponseHandler(&handler, nullptr);
    stack.SetListener([&](const BusEvent&) {
      if (inListener) stop();
    });
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

TEST_F(EmbeddedDeviceStackTest, TakesABusThatThrowsForOneThatDoesNotSend) {
  Register();
  bus.isBroken = true;
  EXPECT_EQ(Set(kLamp, Bool(true)), "error: the telegram could not be sent: broken");
  EXPECT_THAT(Heard("1/0/1 read 0 -"), ElementsAre("read lamp", "refused lamp: not sent: broken"));
  EXPECT_EQ(stack.GetCounters().telegramsNotSent, 2u);
}

TEST_F(EmbeddedDeviceStackTest, GoesOnWhenAListenerThrows) {
  Register();
  stack.SetListener([](const BusEvent&) { throw 7; });
  EXPECT_EQ(Set(kLamp, Bool(true)), "2:1");
  EXPECT_EQ(Get(kLamp), "2:1");
}

TEST(EmbeddedDeviceStack, MayBeUsedFromItsCallbacksAndStoppedInAnyState) {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  LoopbackBus bus;
  EmbeddedDeviceStack stack(ParseInstallation(kHouse, ""), bus);
  std::atomic<int> calls{0};
  Listening handler([&](void*, const std::string&) {
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
    switch (random() % 400) {
      case 0: return Fault{Kind::Drop, {}};
      case 1: return Fault{Kind::Late, {}};
      case 2: return Fault{Kind::None, std::chrono::milliseconds(random() % 40)};
      default: break;
    }
    switch (random() % 20) {
      case 0: return Fault{Kind::Duplicate, {}};
      case 1: return Fault{Kind::EmptyId, {}};
      case 2: return Fault{Kind::Error, {}};
      default: return Fault();
    }
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
        if (!docket.IsAnswered()) {
          ++open;
        } else if (!docket.IsReplyValid()) {
          ++bad;
        } else {
          ++(docket.ReadReply() == "10:" + text ? good : wrong);
        }
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
  struct NoError final : Vanta::IDeviceStackClient::IError {
    int GetErrorCode() const override { return 0; }
    std::string GetFirstDetail() const override { return ""; }
    std::string GetSecondDetail() const override { return ""; }
    std::string GetDescription() const override { return ""; }
  } none;
  for (auto id = last; id > 0; --id) messenger.OnResponse(nullptr, std::to_string(id), "", none);
  for (const std::string& line : log.Take()) ASSERT_THAT(line, StartsWith("DEBUG No docket for response ID"));
  messenger.UnsetAsResponseHandler();
}

}  // namespace
}  // namespace DeviceStack
