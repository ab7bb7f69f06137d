#include <Knx/LogBus.h>
#include <Knx/LoopbackBus.h>
#include <Knx/TelegramLog.h>
#include <gmock/gmock.h>

#include <sstream>

#include "Support/Cases.h"

namespace Knx {
namespace {

using TalTest::Case;
using TalTest::ForEachCase;
using TalTest::Is;
using testing::ElementsAre;

TEST(KnxAddress, IsReadAndWritten) {
  std::string error;
  GroupAddress group;
  IndividualAddress device;
  for (const auto& [text, raw] : {std::pair("31/7/255", 0xFFFF), {"1/2/3", 0x0A03}}) {
    EXPECT_TRUE(ParseAddress(text, group, error));
    EXPECT_EQ(group.raw, raw);
    EXPECT_EQ(FormatAddress(group), text);
  }
  EXPECT_TRUE(ParseAddress("15.1.250", device, error));
  EXPECT_EQ(device.raw, 0xF1FA);
  EXPECT_EQ(FormatAddress(device), "15.1.250");
  for (const char* bad : {"", "1/2", "1/2/3/4", "32/0/0", "1/8/0", "1/1/256", "0/0/0", "1.1.1", " 1/1/1", "1/1/-1"}) {
    EXPECT_FALSE(ParseAddress(bad, group, error)) << bad;
  }
  EXPECT_EQ(group.raw, 0x0A03);
}

std::vector<Telegram> Read(const std::string& text) {
  std::istringstream in(text);
  return ReadTelegramLog(in, "bus.log");
}
/// A log read and written again.
std::string Again(const std::string& text) {
  std::string again;
  for (const Telegram& telegram : Read(text)) again += FormatTelegram(telegram) + '\n';
  return again;
}

TEST(TelegramLog, IsReadAndWritten) {
  EXPECT_EQ(Again("# comment\r\n\n  2026-11-21T06:30:00Z\t1.1.10 1/2/1 WRITE 16 0x0c1a\r\n"
                  "2026-11-21T06:30:00.007Z 1.1.20  1/2/1 read 0 -\n"
                  "2028-02-29T23:59:59.999Z 15.15.255 31/7/255 response 6 3F"),
            "2026-11-21T06:30:00.000Z 1.1.10 1/2/1 write 16 0C1A\n"
            "2026-11-21T06:30:00.007Z 1.1.20 1/2/1 read 0 -\n"
            "2028-02-29T23:59:59.999Z 15.15.255 31/7/255 response 6 3F\n");
  const std::chrono::system_clock::time_point epoch;
  EXPECT_EQ(FormatTime(epoch), "1970-01-01T00:00:00.000Z");
  EXPECT_EQ(FormatTime(epoch - std::chrono::milliseconds(1)), "1969-12-31T23:59:59.999Z");
}

TEST(TelegramLog, SaysWhatIsWrongInWhichLine) {
  ForEachCase("DeviceStack.txt", "telegrams", [](const Case& c) {
    const std::string log = "2026-11-21T06:30:00Z 1.1.10 1/2/1 write 16 0C1A\n\n" + c[0];
    EXPECT_THAT([&] { Read(log); }, testing::ThrowsMessage<TelegramLogError>(Is("bus.log:3: " + c[1])));
  });
}

TEST(LogBus, PlaysItsLogAndRecordsWhatIsSent) {
  const auto telegrams =
      Read("2026-11-21T06:30:00Z 1.1.1 1/2/1 write 1 01\n2026-11-21T06:30:00.020Z 1.1.2 1/2/1 write 1 00\n");
  for (const auto speed : {LogBus::Speed::Full, LogBus::Speed::Real}) {
    std::ostringstream record;
    LogBus bus(telegrams, speed, &record);
    std::vector<std::string> heard;
    bus.SetReceiver([&](const Telegram& telegram) { heard.push_back(FormatAddress(telegram.source)); });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(bus.Play([] { return false; }), 2u);
    const bool isPaused = std::chrono::steady_clock::now() - start >= std::chrono::milliseconds(20);
    EXPECT_TRUE(speed == LogBus::Speed::Full || isPaused);
    EXPECT_THAT(heard, ElementsAre("1.1.1", "1.1.2"));
    int asked = 0;
    EXPECT_EQ(bus.Play([&] { return ++asked > 1; }), 1u);
    std::string error;
    EXPECT_TRUE(bus.Send(telegrams[0], error));
    const auto sent = Read(record.str());
    ASSERT_EQ(sent.size(), 1u);
    EXPECT_EQ(FormatTelegram(sent[0]).substr(24), " 1.1.1 1/2/1 write 1 01");
    EXPECT_EQ(heard.size(), 3u);  // what is sent is not heard
    record.setstate(std::ios::badbit);
    EXPECT_FALSE(bus.Send(telegrams[0], error));
    EXPECT_EQ(error, "the record of sent telegrams cannot be written");
  }
}

TEST(LoopbackBus, LetsEverythingComeBackUntilNobodyListens) {
  LoopbackBus bus;
  int heard = 0;
  std::string error;
  bus.SetReceiver([&](const Telegram&) { ++heard; });
  EXPECT_TRUE(bus.Send({}, error));
  bus.SetReceiver(nullptr);
  EXPECT_TRUE(bus.Send({}, error));
  EXPECT_EQ(heard, 1);
}

}  // namespace
}  // namespace Knx
