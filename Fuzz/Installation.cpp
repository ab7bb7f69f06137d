// Any text as an installation: refused in one line, or written and read back the same.
#include <DeviceStack/Installation.h>

#include "Input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const std::string written = FormatInstallation(DeviceStack::ParseInstallation(text, "input"));
    FUZZ_CHECK(FormatInstallation(DeviceStack::ParseInstallation(written, "written")) == written, written);
  } catch (const DeviceStack::InstallationError& error) {
    const std::string reason = error.what();
    FUZZ_CHECK(reason.rfind("input: ", 0) == 0 && Fuzz::IsOneLine(reason), reason);
    FUZZ_CHECK(AROVALUE::EnsureUTF8(reason) == reason, reason);
  }
  return 0;
}
