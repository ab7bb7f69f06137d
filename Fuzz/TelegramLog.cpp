// Any text as a telegram log: refused in one line, or written and read back the same.
#include <Knx/TelegramLog.h>

#include <sstream>

#include "Input.h"

namespace {

std::string Rewritten(const std::string& text, const std::string& name) {
  std::istringstream in(text);
  std::string written;
  for (const Knx::Telegram& telegram : Knx::ReadTelegramLog(in, name)) {
    written += FormatTelegram(telegram) + '\n';
  }
  return written;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  try {
    const std::string written = Rewritten(std::string(reinterpret_cast<const char*>(data), size), "input");
    FUZZ_CHECK(Rewritten(written, "written") == written, written);
  } catch (const Knx::TelegramLogError& error) {
    const std::string reason = error.what();
    FUZZ_CHECK(reason.rfind("input:", 0) == 0 && Fuzz::IsOneLine(reason), reason);
    FUZZ_CHECK(AROVALUE::EnsureUTF8(reason) == reason, reason);
  }
  return 0;
}
