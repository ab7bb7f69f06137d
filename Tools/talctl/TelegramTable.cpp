#include "TelegramTable.h"

#include <Format/Octets.h>
#include <Knx/TelegramLog.h>

#include <algorithm>
#include <ostream>

#include "Characters.h"

namespace Talctl {
namespace {

using DeviceStack::BusEvent;

std::string ValueCell(const BusEvent& event) {
  switch (event.kind) {
    case BusEvent::Kind::Received: return Format::FormatOneLine(*event.value);
    case BusEvent::Kind::Sent: return Format::FormatOneLine(*event.value) + "  (sent)";
    case BusEvent::Kind::Read: return "(asked for)";
    case BusEvent::Kind::Refused: return "refused: " + event.reason;
    case BusEvent::Kind::Ignored: break;
  }
  return "(for no object)";
}

const char* NameOf(BusEvent::Kind kind) {
  switch (kind) {
    case BusEvent::Kind::Received: return "received";
    case BusEvent::Kind::Read: return "read";
    case BusEvent::Kind::Sent: return "sent";
    case BusEvent::Kind::Refused: return "refused";
    case BusEvent::Kind::Ignored: break;
  }
  return "ignored";
}

std::string OctetsOf(const Knx::Telegram& telegram) {
  return telegram.value.GetRawData().empty() ? "-" : Format::Hex(telegram.value.GetRawData());
}

}  // namespace

Format::Json DescribeTelegram(const Knx::Telegram& telegram) {
  return {{"time", Knx::FormatTime(telegram.time)},
          {"source", FormatAddress(telegram.source)},
          {"groupAddress", FormatAddress(telegram.destination)},
          {"service", Knx::NameOf(telegram.service)},
          {"bits", telegram.value.GetDefinedSize()},
          {"octets", Format::Hex(telegram.value.GetRawData())}};
}

TelegramTable::TelegramTable(const DeviceStack::Installation& installation, bool json, std::ostream& out,
                             const Paint& paint)
    : m_json(json), m_out(out), m_paint(paint), m_objectWidth(WidthOf("OBJECT")) {
  for (const auto& object : installation.objects) m_objectWidth = std::max(m_objectWidth, WidthOf(object.name));
}

std::string TelegramTable::Cells(const std::string& time, const std::string& source, const std::string& group,
                                 const std::string& service, const std::string& object, const std::string& dpt,
                                 const std::string& octets) const {
  const auto pad = [](const std::string& cell, std::size_t width) {
    return cell + std::string(width - std::min(width, WidthOf(cell)) + 2, ' ');
  };
  return pad(time, 24) + pad(source, 7) + pad(group, 7) + pad(service, 8) + pad(object, m_objectWidth) + pad(dpt, 7) +
         pad(octets, 10);
}

void TelegramTable::PrintHeading() {
  if (m_json) return;
  const std::string cells = Cells("TIME", "SOURCE", "GROUP", "SERVICE", "OBJECT", "DPT", "OCTETS");
  m_out << m_paint(Colour::Heading, cells + "VALUE") << '\n';
}

void TelegramTable::Print(const BusEvent& event) {
  const Knx::Telegram& telegram = event.telegram;
  if (!m_json) {
    const bool isRefused = event.kind == BusEvent::Kind::Refused;
    m_out << Cells(Knx::FormatTime(telegram.time), FormatAddress(telegram.source), FormatAddress(telegram.destination),
                   Knx::NameOf(telegram.service), event.object ? event.object->name : "-",
                   event.object ? Format::FormatDpt(event.object->dpt) : "-", OctetsOf(telegram))
          << (isRefused ? m_paint(Colour::Bad, ValueCell(event)) : ValueCell(event)) << '\n';
    return;
  }
  Format::Json json = DescribeTelegram(telegram);
  json["event"] = NameOf(event.kind);
  if (event.object) {
    json["object"] = event.object->name;
    json["id"] = event.object->ValueId();
    json["dpt"] = Format::FormatDpt(event.object->dpt);
  }
  if (event.value) json["value"] = Format::ToJson(*event.value);
  if (!event.reason.empty()) json["error"] = event.reason;
  m_out << Format::Line(json);
}

}  // namespace Talctl
