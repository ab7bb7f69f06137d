// What happens on the bus, a line for each event.
#pragma once

#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Format/ValueText.h>

#include <iosfwd>
#include <string>

#include "Paint.h"

namespace Talctl {

/// Prints events under a heading, or as JSON. The columns are as wide as the installation's names need.
class TelegramTable {
 public:
  TelegramTable(const DeviceStack::Installation& installation, bool json, std::ostream& out, const Paint& paint);
  void PrintHeading();
  void Print(const DeviceStack::BusEvent& event);

 private:
  /// All but the last, which is of any width.
  std::string Cells(const std::string& time, const std::string& source, const std::string& group,
                    const std::string& service, const std::string& object, const std::string& dpt,
                    const std::string& octets) const;

  const bool m_json;
  std::ostream& m_out;
  const Paint m_paint;
  std::size_t m_objectWidth;
};

/// A telegram as JSON: time, source, groupAddress, service, bits, octets.
Format::Json DescribeTelegram(const Knx::Telegram& telegram);

}  // namespace Talctl
