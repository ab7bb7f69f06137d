// What an installation consists of.
#pragma once

#include <BasePlatform/AroValue.h>
#include <Format/DptText.h>
#include <Format/ValueText.h>
#include <Knx/Address.h>
#include <Tal/KnxZelMapping.h>

#include <boost/optional.hpp>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace DeviceStack {

/// What a communication object does on the bus.
struct Flags {
  bool read = false;      ///< answers reads
  bool write = false;     ///< takes what is written
  bool transmit = false;  ///< sends what the application sets
  bool update = false;    ///< takes responses
};

/// An object with a value, a datapoint type, and a place on the bus.
struct CommunicationObject {
  int device = 1;                     ///< logical device, 1 or 2
  std::uint16_t number = 1;           ///< 1 to 4095, once in a device
  std::string name;                   ///< not empty, not a number, once in an installation
  Format::Dpt dpt;                    ///< one that the direct converter encodes or decodes
  Knx::GroupAddress address;          ///< several objects may have the same
  Flags flags;                        ///< what it does on the bus
  boost::optional<AROVALUE> initial;  ///< nothing: the object has no value before somebody gives it one

  Tal::KnxZelMapping::ObjectId ChannelId() const;  ///< identifier of its channel
  Tal::KnxZelMapping::ObjectId ValueId() const;    ///< identifier of its value, the next number
};

/// A house, or a part of one, behind one device on the bus.
struct Installation {
  std::string name;                          ///< on one line
  Knx::IndividualAddress address;            ///< of the device on the bus
  std::vector<CommunicationObject> objects;  ///< in any order
};

/// An installation that cannot be used: "house.json: objects[2].dpt: " and the reason.
class InstallationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

constexpr std::size_t kMaxInstallationSize = std::size_t{16} * 1024 * 1024;  ///< octets of text that are read at most
constexpr int kMaxInstallationDepth = 16;  ///< levels of nesting that are read at most

/// Reads an installation from JSON; Docs/Installation.md has the schema. The whole is checked: unknown, repeated and
/// missing keys, ranges, names and numbers that occur twice, initial values that their datapoint type does not take.
/// @param text    UTF-8.
/// @param source  what errors call the text.
/// @throws InstallationError  for the first thing that is wrong. Where memory runs out, the process may end: values of
///                            the JSON library need some to be destroyed.
Installation ParseInstallation(std::string_view text, const std::string& source);

/// The same from a file. @throws InstallationError  also when it cannot be read.
Installation LoadInstallation(const std::string& path);

/// The text that ParseInstallation() reads back, indented.
std::string FormatInstallation(const Installation& installation);
/// The JSON of that text.
Format::Json ToJson(const Installation& installation);
/// The JSON of one object in that text.
Format::Json ToJson(const CommunicationObject& object);

}  // namespace DeviceStack
