// Memory: what takes none, what is left when it is refused, and that none is kept. TAL_TEST_CONVERSIONS says how many
// conversions run in a row.
#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Knx/LoopbackBus.h>
#include <Tal/AppHostConfig.h>
#include <Tal/DscAsyncRequestMessenger.h>
#include <Tal/MeasureDuration.h>
#include <TalLog/Logger.h>
#include <gtest/gtest.h>
#include <log4cplus/fileappender.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <new>
#include <thread>

#include "Support/Cases.h"
#include "Support/Converters.h"
#include "Support/LogCapture.h"

namespace {

thread_local long t_taken = 0;         ///< allocations of this thread
std::atomic<long> g_live{0};           ///< allocations that have not been given back
std::atomic<bool> g_isShort{false};    ///< while true, one allocation is refused...
std::atomic<long> g_before{0};         ///< ...after so many others...
std::atomic<bool> g_onwards{false};    ///< ...and all that follow as well
std::atomic<bool> g_hasStruck{false};  ///< one was refused

void* Take(std::size_t size) noexcept {
  if (g_isShort) {
    const long before = g_before--;
    if (before == 0 || (before < 0 && g_onwards)) {
      g_hasStruck = true;
      return nullptr;
    }
  }
  ++t_taken;
  ++g_live;
  return std::malloc(size != 0 ? size : 1);
}
void* TakeOrThrow(std::size_t size) {
  void* const memory = Take(size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void Give(void* memory) noexcept {
  if (memory != nullptr) --g_live;
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return TakeOrThrow(size); }
void* operator new[](std::size_t size) { return TakeOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return Take(size); }
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept { return Take(size); }
void operator delete(void* memory) noexcept { Give(memory); }
void operator delete[](void* memory) noexcept { Give(memory); }
void operator delete(void* memory, std::size_t) noexcept { Give(memory); }
void operator delete[](void* memory, std::size_t) noexcept { Give(memory); }

namespace TalTest {
namespace {

using KnxStack::GroupValue;

/// Writes records, as an application's log file does, where they are not kept.
class DiscardedLog {
 public:
  explicit DiscardedLog(Tal::LogLevel level) : m_previous(Tal::GetGlobalDefaultLogger().getLogLevel()) {
    m_appender->setLayout(std::make_unique<log4cplus::PatternLayout>("%D %p %m%n"));
    Tal::GetGlobalDefaultLogger().addAppender(m_appender);
    Tal::GetGlobalDefaultLogger().setLogLevel(static_cast<int>(level));
  }
  ~DiscardedLog() {
    Tal::GetGlobalDefaultLogger().removeAppender(m_appender);
    Tal::GetGlobalDefaultLogger().setLogLevel(m_previous);
  }

 private:
  log4cplus::SharedAppenderPtr m_appender{new log4cplus::FileAppender("/dev/null")};
  int m_previous;
};

Tal::TalKnxValueConverter& Facade() {
  static Tal::TalKnxValueConverter converter;
  static const bool isFilled = (converter.Init(), true);
  static_cast<void>(isFilled);
  return converter;
}

struct IdleCodec final : Tal::KnxConverter {
  bool ToKnxValue(const KNXDPT&, const AROVALUE&, GroupValue&) override { return true; }
  bool FromKnxValue(const KNXDPT&, const GroupValue&, AROVALUE&) override { return true; }
  std::unique_ptr<KnxConverter> Clone() const override { return std::make_unique<IdleCodec>(); }
};

enum class End { Done, False, BadAlloc };

bool g_isRehearsal = false;
/// How a call ends with too little memory, or with enough in a rehearsal.
template <class Call>
End Under(Call&& call) {
  g_hasStruck = false;
  g_isShort = !g_isRehearsal;
  End end = End::BadAlloc;
  try {
    end = call() ? End::Done : End::False;
  } catch (const std::bad_alloc&) {
  }
  g_isShort = false;
  return end;
}
template <class Call>
bool MayThrow(Call&& call) {
  return Under(call) == End::Done;
}
template <class Call>
bool NeverThrows(Call&& call) {
  const End end = Under(call);
  EXPECT_NE(end, End::BadAlloc);
  return end == End::Done;
}

const KnxStack::BinaryData& Content(const GroupValue& groupValue) { return groupValue.GetRawData(); }
template <class Other>
const Other& Content(const Other& other) {
  return other;
}
/// The call writes to its argument when it succeeds, and only then.
template <class Out, class Call>
bool KeepsOut(Out out, Call&& call) {
  const Out before = out;
  const bool isDone = NeverThrows([&] { return call(out); });
  EXPECT_EQ(Content(out) == Content(before), !isDone);
  return isDone;
}

const std::string kLong = std::string(40, 'x') + "\u00FC";  // not ASCII, which would be let through unlooked
const std::string kSerialised = "10:" + kLong;
const AROVALUE kText = Text(kLong);
const GroupValue kUmlauts(KnxStack::BinaryData(std::vector<std::uint8_t>(14, 0xFC).data(), 14), 112);
const GroupValue kTooLong(KnxStack::BinaryData(std::vector<std::uint8_t>(25).data(), 25), 200);
const AROVALUE kNoSuchType = Typed(static_cast<AroValueType>(1000));
const GroupValue kWord({0x0C, 0x1A}, 16);

bool Serialises() {
  std::string text = "before";
  const bool isDone = MayThrow([&] { return kText.Serialize(text, true), true; });
  EXPECT_EQ(text, isDone ? "10.7:" + kLong : "before");
  return isDone;
}

bool AddsARow() {
  Tal::DptValueMap map;
  const IdleCodec codec;
  const Tal::DptValueEntry row({8, 300, 1}, avtByte, AroDP::astGeneric, &codec);
  const bool isDone = MayThrow([&] { return map.Insert(row); });
  EXPECT_EQ(map.Rows().size(), isDone ? 1u : 0u);
  return isDone;
}

bool MakesAConverter() {
  return MayThrow([] {
    Tal::KnxValueConverter converter;
    converter.Init();
    return converter.AddDptValueMapEntry(300, 1, 8, avtByte, AroDP::astGeneric, IdleCodec());
  });
}

bool ReadsAConfiguration() {
  std::string text = "<TalAppHostConfig><ObjectModelConfig Path='" + kLong +
                     "'/><ZelConfig><ResponseDps><Dp ObjId='1'/></ResponseDps></ZelConfig></TalAppHostConfig>";
  return NeverThrows([&] { return Tal::AppHostConfiguration().LoadAppHostConfigXML(&text[0]); });
}

/// Want of memory does not pass for a fault of the text.
bool RefusesAnInstallation() {
  const End end = Under([] {
    try {
      return DeviceStack::ParseInstallation('"' + kLong + '"', "house.json").objects.empty();
    } catch (const DeviceStack::InstallationError& error) {
      return std::string_view(error.what()).find("bad_alloc") == std::string_view::npos;
    }
  });
  EXPECT_NE(end, End::False);
  return end == End::Done;
}

bool SetsAValue() {
  Knx::LoopbackBus bus;
  DeviceStack::EmbeddedDeviceStack stack(DeviceStack::ParseInstallation(R"({"name": "x", "address": "1.1.9",
      "objects": [{"device": 1, "number": 1, "name": "a display in the hall", "dpt": "16.001", "groupAddress": "1/1/1",
      "flags": ["transmit"], "initial": "nothing to show"}]})",
                                                                        "house.json"),
                                         bus);
  Tal::RemoteRequestMessengerDeviceStack adapter(stack);
  Tal::DscAsyncRequestMessenger messenger(adapter, boost::posix_time::milliseconds(g_isRehearsal ? 60000 : 20), 0);
  messenger.SetAsResponseHandler();
  messenger.RegisterApplication("app", "", "");
  const bool isDone = MayThrow([&] {
    const bool isGood = messenger.SetValue(100101, kText, false).IsReplyValid();
    stack.WaitUntilIdle();
    return isGood;
  });
  stack.WaitUntilIdle();
  const std::string shown = stack.GetCounters().telegramsSent == 0 ? "10:nothing to show" : kSerialised;
  std::string kept;
  for (int i = 0; i < 100 && kept.empty(); ++i) kept = messenger.GetValue(100101, false).ReadReply();  // a slow machine
  EXPECT_EQ(kept, shown);
  messenger.UnsetAsResponseHandler();
  return isDone;
}

/// Plays a scene with the first allocation refused, with the second, and so on until there are enough. After each it
/// must succeed and, but for the first round, in which things are made that stay, nothing may be left.
void Exhaust(const char* name, const std::function<bool()>& play) {
  SCOPED_TRACE(name);
  bool isFirst = true;
  bool wasStruck = false;  // a scene without allocations would prove nothing
  for (const bool onwards : {false, true, false}) {
    bool isStruck = true;
    for (long before = 0; isStruck && !testing::Test::HasFailure(); ++before) {
      SCOPED_TRACE(before);
      const long live = g_live;
      g_before = before;
      g_onwards = onwards;
      play();
      isStruck = g_hasStruck;
      wasStruck |= isStruck;
      EXPECT_TRUE(isFirst || g_live == live) << g_live - live;
      g_isRehearsal = true;
      EXPECT_TRUE(play());
      g_isRehearsal = false;
    }
    isFirst = false;
  }
  EXPECT_TRUE(wasStruck);
}

TEST(Allocation, MemoryThatIsRefusedLeavesNothingHalfDone) {
  const DiscardedLog log(Tal::LogLevel::Debug);
  Exhaust("converter", MakesAConverter);  // the first, as it builds the standard table
  Map();
  Facade();
  static KNXDPT text{0, 16, 1};
  static KNXDPT number{0, 9, 1};
  static const AROVALUE noDate = Timed(avtDate, Time(2023, 2, 29, 0, 0, 0));
  const std::pair<const char*, std::function<bool()>> scenes[] = {
      // clang-format off
      {"timed scope", [] { return NeverThrows([] { return Tal::MeasureDuration("It took ", boost::chrono::seconds(0)), true; }); }},
      {"direct encoder", [] { return MayThrow([] { return Tal::AroValueToGroupValue(kText, Dpt(16)).has_value(); }); }},
      {"its range", [] { return MayThrow([] { return !Tal::AroValueToGroupValue(Word(65536), Dpt(7)); }); }},
      {"its calendar", [] { return MayThrow([] { return !Tal::AroValueToGroupValue(noDate, Dpt(11)); }); }},
      {"its main types", [] { return MayThrow([] { return !Tal::AroValueToGroupValue(Byte(1), Dpt(25)); }); }},
      {"direct decoder", [] { return MayThrow([] { return Tal::GroupValueToAroValue(kUmlauts, Dpt(16)).has_value(); }); }},
      {"its sizes", [] { return MayThrow([] { return !Tal::GroupValueToAroValue(kWord, Dpt(16)); }); }},
      {"check", [] { return NeverThrows([] { return Tal::CheckGroupValue(kUmlauts, Dpt(16)); }); }},
      {"its sizes", [] { return NeverThrows([] { return !Tal::CheckGroupValue(kWord, Dpt(16)); }); }},
      {"map encoder", [] { return KeepsOut(kWord, [](GroupValue& out) { return Map().ToKnxValue(text, kText, out); }); }},
      {"its range", [] { return NeverThrows([] { GroupValue out; return !Map().ToKnxValue(number, Float(-300), out); }); }},
      {"map decoder", [] { return NeverThrows([] { AROVALUE out; return Map().FromKnxValue(text, kUmlauts, out); }); }},
      {"its sizes", [] { return NeverThrows([] { AROVALUE out; return !Map().FromKnxValue(text, kWord, out); }); }},
      {"its octets", [] { return NeverThrows([] { AROVALUE out; return !Map().FromKnxValue(number, {{}, 16}, out); }); }},
      {"facade encoder", [] { return KeepsOut(kWord, [](GroupValue& out) { return Facade().ToKnxValue(text, kSerialised, out); }); }},
      {"facade decoder", [] { return KeepsOut(kLong, [](std::string& out) { return Facade().FromKnxValue(kUmlauts, out, true); }); }},
      {"value from text", [] { return KeepsOut(DWord(7), [](AROVALUE& out) { return out.Deserialize(kSerialised); }); }},
      {"text from value", Serialises}, {"row", AddsARow}, {"configuration", ReadsAConfiguration}, {"installation", RefusesAnInstallation},
      {"request", SetsAValue},
      // clang-format on
  };
  for (const auto& [name, play] : scenes) Exhaust(name, play);
}

/// A value that a converter writes, its octets, and what the converters read there.
struct Work {
  Converter converter;
  KNXDPT dpt;
  AROVALUE value;
  GroupValue wire;
  boost::optional<AROVALUE> direct;
  AROVALUE map;
  unsigned long Number() const { return Dpt(dpt.main, dpt.sub); }
};

/// The values of the tables of both converters that come back.
std::vector<Work> Works() {
  const ScopedLogCapture quiet(Tal::LogLevel::Fatal);
  std::vector<Work> works;
  const auto add = [&](Converter converter, const std::string& type, const std::string& value,
                       const std::string& wire) {
    Work work{converter, ReadDpt(type), Value(value), Octets(wire), {}, {}};
    work.direct = Tal::GroupValueToAroValue(work.wire, work.Number());
    KNXDPT dpt = work.dpt;
    if (Map().FromKnxValue(dpt, work.wire, work.map) && Encode(converter, dpt, work.value) == wire)
      works.push_back(work);
  };
  for (const Case& c : ReadCases("Direct.txt", "there and back")) {
    if (c[3].empty()) add(Converter::Direct, c[0] + ".1", c[1], c[2]);
  }
  for (const Case& c : ReadCases("Codecs.txt", "encode")) {
    if (c[3].find("false") == std::string::npos) add(Converter::Table, c[1], c[2], c[3]);
  }
  EXPECT_GT(works.size(), 70u);
  return works;
}

/// The kinds of conversion from kRefused on are refused.
constexpr unsigned kRefused = 4;
constexpr unsigned kKinds = 7;

/// One conversion. @return whether it came out as it should.
bool Convert(const Work& work, unsigned kind) {
  KNXDPT dpt = work.dpt;
  GroupValue out;
  AROVALUE value;
  switch (kind) {
    case 0: {
      if (work.converter == Converter::Table)
        return Map().ToKnxValue(dpt, work.value, out) && Content(out) == Content(work.wire);
      const auto encoded = Tal::AroValueToGroupValue(work.value, work.Number());
      return encoded && Content(*encoded) == Content(work.wire);
    }
    case 1: return Map().FromKnxValue(dpt, work.wire, value) && value == work.map;
    case 2: return Tal::CheckGroupValue(work.wire, work.Number());
    case 3: return Tal::GroupValueToAroValue(work.wire, work.Number()) == work.direct;
    case kRefused: return !Tal::AroValueToGroupValue(kNoSuchType, work.Number());
    case 5: return !Map().ToKnxValue(dpt, kNoSuchType, out);
    default: return !Tal::GroupValueToAroValue(kTooLong, work.Number());
  }
}

TEST(Allocation, ConversionsOfValuesOfFixedSizeTakeNoMemory) {
  for (const Work& work : Works()) {
    for (unsigned kind = 0; kind < kRefused; ++kind) {
      const long taken = t_taken;
      const bool isRight = Convert(work, kind);
      const bool leavesARecord = kind == 3 && !work.direct;  // what the direct decoder does not take
      EXPECT_TRUE(t_taken == taken || leavesARecord) << work.dpt << ' ' << work.value << ' ' << kind;
      EXPECT_TRUE(isRight) << work.dpt << ' ' << work.value << ' ' << kind;
    }
  }
}

TEST(Allocation, ManyConversionsKeepNoMemory) {
  const DiscardedLog log(Tal::LogLevel::Error);
  const std::vector<Work> works = Works();
  const std::size_t round = works.size() * kKinds;
  std::atomic<std::size_t> wrong{0};
  const auto convert = [&](std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
      wrong += Convert(works[i % works.size()], static_cast<unsigned>(i / works.size() % kKinds)) ? 0 : 1;
  };
  convert(round);
  const long live = g_live;
  const char* const wanted = std::getenv("TAL_TEST_CONVERSIONS");
  convert(wanted != nullptr ? std::strtoul(wanted, nullptr, 10) : 200000);
  EXPECT_EQ(g_live, live);

  {
    std::vector<std::thread> threads;
    for (int i = 0; i < 64; ++i) threads.emplace_back(convert, 4 * round);
    for (std::thread& thread : threads) thread.join();
  }
  EXPECT_EQ(g_live, live);
  EXPECT_EQ(wrong, 0u);
}

}  // namespace
}  // namespace TalTest
