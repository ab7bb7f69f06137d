// What everything else is compared with.
#include <sys/types.h>

#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <boost/timer/timer.hpp>
#include <ctime>
#include <memory>
#include <thread>

#include "Bare.h"
#include "Operation.h"
#include "Pinning.h"
#include "Samples.h"

namespace Bench {
namespace {

BareValue Flat(const AROVALUE& value) {
  BareValue flat;
  flat.type = value.avt;
  flat.number = value.GetDWord();
  flat.real = value.GetFloat();
  flat.time = value.time;
  flat.text = value.text;
  return flat;
}

BareGroupValue Flat(const KnxStack::GroupValue& groupValue) {
  BareGroupValue flat = {};
  for (const std::uint8_t octet : groupValue.GetRawData()) flat.octets[flat.count++] = octet;
  flat.bits = static_cast<std::uint8_t>(groupValue.GetDefinedSize());
  return flat;
}

struct FlatSample {
  unsigned main;
  BareValue value;
  BareGroupValue groupValue;
};

std::vector<FlatSample> FlatSamples() {
  std::vector<FlatSample> all;
  for (const Sample& sample : Samples()) all.push_back({sample.dpt.main, Flat(sample.direct), Flat(sample.groupValue)});
  return all;
}

/// Every sample on its own, then all in mixed order.
template <class Convert>
void AddBare(Operations& operations, const std::string& name, Convert convert) {
  const auto flat = std::make_shared<const std::vector<FlatSample>>(FlatSamples());
  for (std::size_t i = 0; i < flat->size(); ++i) {
    operations.push_back({name + '/' + Samples()[i].name, "", [flat, i, convert](std::size_t times) {
                            for (; times > 0; --times) convert((*flat)[i]);
                          }});
  }
  operations.push_back({name + "/mixed", "",
                        [flat, convert](std::size_t times) {
                          for (; times > 0; --times) {
                            const std::uint8_t* const order = MixedOrder();
                            for (std::size_t i = 0; i < kMixed; ++i) convert((*flat)[order[i]]);
                          }
                        },
                        1, kMixed});
}

void ReadClocks(std::size_t times) {
  for (; times > 0; --times) {
    const boost::timer::cpu_timer timer;
    Keep(timer.elapsed());
  }
}

void ReadClocksAndCalendar(std::size_t times) {
  for (; times > 0; --times) {
    const boost::timer::cpu_timer timer;
    std::tm fields = {};
    fields.tm_year = 123;
    fields.tm_mon = 5;
    fields.tm_mday = 1;
    fields.tm_isdst = -1;
    const std::time_t moment = std::mktime(&fields);
    ::localtime_r(&moment, &fields);
    Keep(fields);
    Keep(timer.elapsed());
  }
}

/// Two threads that wake each other, as a caller of the messenger and the service's thread do.
class Echo {
 public:
  Echo() : m_pin(ServiceSide()), m_thread([this] { Answer(); }) { m_pin.reset(); }
  ~Echo() {
    {
      const boost::lock_guard<boost::mutex> lock(m_mutex);
      m_state = State::Stopped;
    }
    m_changed.notify_all();
    m_thread.join();
  }
  void ThereAndBack(std::size_t times) {
    const auto pin = CallerSide();
    for (; times > 0; --times) {
      boost::unique_lock<boost::mutex> lock(m_mutex);
      m_state = State::Asked;
      m_changed.notify_one();
      while (m_state != State::Answered) m_answered.wait(lock);
    }
  }

 private:
  enum class State { Answered, Asked, Stopped };
  void Answer() {
    boost::unique_lock<boost::mutex> lock(m_mutex);
    for (;;) {
      while (m_state == State::Answered) m_changed.wait(lock);
      if (m_state == State::Stopped) return;
      m_state = State::Answered;
      m_answered.notify_one();
    }
  }
  boost::mutex m_mutex;
  boost::condition_variable m_changed;
  boost::condition_variable m_answered;
  State m_state = State::Answered;
  std::unique_ptr<Pin> m_pin;
  std::thread m_thread;
};

}  // namespace

void AddBaselines(Operations& operations) {
  AddBare(operations, "bare_encode", [](const FlatSample& sample) {
    BareGroupValue out;
    Keep(BareEncode(sample.main, sample.value, out));
    Keep(out);
  });
  AddBare(operations, "bare_decode", [](const FlatSample& sample) {
    BareValue out;
    Keep(BareDecode(sample.main, sample.groupValue, out));
    Keep(out);
  });
  operations.push_back({"cpu_timer", "", ReadClocks});
  operations.push_back({"cpu_timer_and_calendar", "", ReadClocksAndCalendar});
  const auto echo = std::make_shared<Echo>();
  operations.push_back(
      {"hand_over", "", [echo](std::size_t times) { echo->ThereAndBack(times); }, 64, 1, false, false});
}

}  // namespace Bench
