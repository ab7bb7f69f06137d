// The objects of an installation and their values.
#pragma once

#include <DeviceStack/Installation.h>
#include <DeviceStack/ServiceError.h>
#include <Knx/Bus.h>

#include <map>
#include <unordered_map>
#include <vector>

namespace DeviceStack {

/// Knows all identifiers of the KNX side: the device, both logical devices, the communication objects of the
/// installation, all parameters and the app host's control. Parameters and control values begin with the default of
/// their type. What fails throws a ServiceError and changes nothing. No lock: its owner has one.
class ObjectStore {
 public:
  using ObjectId = Tal::KnxZelMapping::ObjectId;

  explicit ObjectStore(Installation installation) { Replace(std::move(installation)); }

  const Installation& GetInstallation() const { return m_objects.installation; }

  /// Takes another installation. All values begin anew.
  void Replace(Installation installation);
  /// Takes a changed installation. Objects keep their values, but those whose datapoint type or initial value is other.
  void Change(Installation installation);

  /// An object by its channel or its value, or by its name; null when there is none.
  const CommunicationObject* Find(ObjectId id) const;
  const CommunicationObject* Find(const std::string& name) const;

  /// @throws ServiceError  UnknownObject, NoValueObject or NoValueYet.
  const AROVALUE& Value(ObjectId id) const;

  /// What is sent when @p id gets @p value: nothing for parameters, control values, and objects that do not transmit.
  /// @throws ServiceError  UnknownObject, NoValueObject, WrongType or RefusedValue.
  boost::optional<Knx::Telegram> TelegramOf(ObjectId id, const AROVALUE& value) const;
  /// Stores what TelegramOf() let through.
  void Assign(ObjectId id, AROVALUE value);

  /// What a telegram does to one object.
  struct Effect {
    const CommunicationObject* object;
    boost::optional<AROVALUE> value;          ///< stored
    boost::optional<Knx::Telegram> response;  ///< to be sent
    std::string refusal;                      ///< why the octets are not stored
  };
  /// Stores what a telegram brings to the objects of its group, where their flags let it in.
  std::vector<Effect> Receive(const Knx::Telegram& telegram);

 private:
  struct Entry {
    CommunicationObject object;
    boost::optional<AROVALUE> value;
  };
  /// All that belongs to an installation, replaced as a whole.
  struct Objects {
    Installation installation;
    std::vector<Entry> entries;
    std::unordered_map<ObjectId, std::size_t> byId;  ///< by the value's identifier
    std::unordered_map<std::string, std::size_t> byName;
    std::unordered_map<std::uint16_t, std::vector<std::size_t>> byAddress;
  };

  const Entry* FindEntry(ObjectId id) const;
  /// @param before  whose values are kept; null: none.
  static Objects Build(Installation installation, const Objects* before);
  Knx::Telegram Outgoing(const CommunicationObject& object, Knx::Service service, KnxStack::GroupValue value) const;

  Objects m_objects;
  std::map<ObjectId, AROVALUE> m_others;  ///< parameters and control values that were set
};

}  // namespace DeviceStack
