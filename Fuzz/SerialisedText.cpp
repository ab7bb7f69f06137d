// Any text as a serialised value: what is accepted is written and read back equal, byte for byte, in both forms.
#include "Input.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Fuzz::Prepare();
  const std::string text(reinterpret_cast<const char*>(data), size);
  AROVALUE value;
  value.avt = avtWord;
  value.SetPayload(0x0123456789ABCDEFu);
  value.text = "before";
  const AROVALUE before = value;
  if (!value.Deserialize(text)) {
    FUZZ_CHECK(value == before, text);
    return 0;
  }
  FUZZ_CHECK(Fuzz::IsOneLine(value.ToString()), text);
  for (const bool internal : {false, true}) {
    std::string written;
    value.Serialize(written, internal);
    AROVALUE read;
    FUZZ_CHECK(read.Deserialize(written), written);
    std::string again;
    read.Serialize(again, internal);
    FUZZ_CHECK(again == written, written + " | " + again);
    const bool isNan = value.avt == avtFloat && value.GetFloat() != value.GetFloat();
    FUZZ_CHECK(isNan || read == value, written);
  }
  return 0;
}
