// A byte string as a schedule for the messenger: what three callers ask for, which ids they get, and which answers come
// when, on whose id, good and bad. Nobody gets an answer to an id that was not given to him, and nobody waits for ever.
#include <Tal/DscAsyncRequestMessenger.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <mutex>
#include <thread>
#include <vector>

#include "Input.h"
#include "Support/ScriptedClient.h"

namespace {

using boost::posix_time::microseconds;
using Handler = Vanta::IDeviceStackClient::IResponseHandler;
using TalTest::ScriptedClient;

thread_local std::vector<std::string> t_given;  ///< ids that the calling thread got for its request

/// One answer: by any callback, with any code. Its text names the id.
void Answer(Handler& handler, const std::string& id, std::uint8_t how) {
  const TalTest::TestError error((how & 0x07) == 7 ? how : 0, "refused " + id);
  switch (how >> 3 & 0x07) {
    case 0: return handler.OnGetValue(nullptr, id, how, "urn", id, error);
    case 1: return handler.OnSetValue(nullptr, id, how, "urn", id, error);
    case 2: return handler.OnGetConfiguration(nullptr, id, id, error);
    default: return handler.OnResponse(nullptr, id, id, error);
  }
}

/// Reads the schedule as the callers' requests come in; called one at a time.
class Schedule {
 public:
  explicit Schedule(Fuzz::Input input) : m_input(input) {}

  void AnswerWellFromNowOn() { m_isOver = true; }

  ScriptedClient::Step operator()(const std::string&) {
    if (m_isOver) return {"last", [](Handler& handler) { Answer(handler, "last", 0); }};
    const std::uint8_t plan = m_input.Octet();
    std::string id;
    if ((plan & 0x07) == 1 && !m_ids.empty()) {
      id = m_ids[plan % m_ids.size()];  // a service that repeats itself
    } else if ((plan & 0x07) != 0 || m_input.AtEnd()) {
      id = "id" + std::to_string(m_ids.size());
    }
    if (!id.empty()) {
      m_ids.push_back(id);
      t_given.push_back(id);
    }
    std::vector<std::pair<std::string, std::uint8_t>> answers;
    for (int count = plan >> 3 & 0x03; count > 0 && !m_ids.empty(); --count) {
      const std::uint8_t which = m_input.Octet();
      answers.emplace_back(which == 255 ? "nobody's" : m_ids[m_ids.size() - 1 - which % m_ids.size()], m_input.Octet());
    }
    const bool isLate = (plan & 0x20) != 0;
    return {id, [answers, isLate](Handler& handler) {
              if (isLate) std::this_thread::sleep_for(std::chrono::microseconds(300));
              for (const auto& [whose, how] : answers) Answer(handler, whose, how);
            }};
  }

 private:
  Fuzz::Input m_input;
  std::vector<std::string> m_ids;
  bool m_isOver = false;
};

void Check(const Tal::Docket& docket, bool isWanted) {
  if (!docket.IsAnswered()) {
    FUZZ_CHECK(docket.ReadReply().empty() && docket.ReadDeliveryError().empty() && !docket.IsReplyValid(),
               docket.ReadReply());
    return;
  }
  FUZZ_CHECK(isWanted, docket.ReadReply());
  const auto isMine = [&](const std::string& id) { return id == docket.ReadReply(); };
  FUZZ_CHECK(std::any_of(t_given.begin(), t_given.end(), isMine), docket.ReadReply());
  FUZZ_CHECK(docket.ReadDeliveryError() == "refused " + docket.ReadReply(), docket.ReadDeliveryError());
}

/// What one caller does, an octet each.
void Call(Tal::DscAsyncRequestMessenger& messenger, std::string_view operations) {
  AROVALUE value;
  value.avt = avtByte;
  for (const char operation : operations) {
    const auto op = static_cast<unsigned char>(operation);
    const auto timeout = microseconds((op >> 3 & 0x03) * 200);
    t_given.clear();
    switch (op & 0x07) {
      case 0: Check(messenger.SetValue(op, value, false), true); break;
      case 1: Check(messenger.GetValue(op, true), true); break;
      case 2: Check(messenger.SetConfiguration("text", timeout, [] { return true; }), true); break;
      case 3: Check(messenger.SetConfiguration("text", timeout, [] { return false; }), false); break;
      case 4: {
        int left = op >> 5;
        const auto fewTimes = [&] { return left-- > 0; };
        Check(messenger.SetConfiguration("text", timeout, fewTimes), true);
        break;
      }
      case 5: messenger.SetValueAndIgnoreResponse(op, value, true); break;
      default: Check(messenger.Request("text", timeout), true); break;
    }
  }
}

/// Whatever was before: who asks for something and gets an answer in time, gets it.
void CheckOneMore(ScriptedClient& client, Tal::DscAsyncRequestMessenger& messenger, Schedule& schedule) {
  client.Drain();
  schedule.AnswerWellFromNowOn();
  t_given.clear();
  const Tal::Docket docket = messenger.Request("text", boost::posix_time::minutes(5));
  FUZZ_CHECK(docket.IsAnswered() && docket.IsReplyValid() && docket.ReadReply() == "last", docket.ReadReply());
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  Fuzz::Input input(data, size);
  const unsigned retries = input.Octet() % 3;
  std::string operations[3];
  for (std::string& caller : operations) {
    for (int count = input.Octet() % 6; count > 0; --count) caller += static_cast<char>(input.Octet());
  }
  Schedule schedule(input);
  ScriptedClient client([&schedule](const std::string& call) { return schedule(call); });
  Tal::RemoteRequestMessengerDeviceStack adapter(client);
  Tal::DscAsyncRequestMessenger messenger(adapter, microseconds(400), retries);
  messenger.SetAsResponseHandler();
  std::vector<std::thread> callers;
  for (const std::string& caller : operations) callers.emplace_back([&] { Call(messenger, caller); });
  for (std::thread& caller : callers) caller.join();
  CheckOneMore(client, messenger, schedule);
  messenger.UnsetAsResponseHandler();
  client.Drain();
  return 0;
}
