#include <Tal/RequestMessengerDeviceStack.h>
#include <TalLog/LogRecord.h>

#include <cmath>
#include <limits>

namespace Tal {
namespace {

using ObjectId = Vanta::IDeviceStackClient::AROOBJECTID;

bool IsObjectId(unsigned long id) { return id <= std::numeric_limits<ObjectId>::max(); }

std::string Serialised(const AROVALUE& value, bool internalFormat) {
  // Deliberate: NaN does not reach AROVALUE::Serialize(); the service knows it by these two texts.
  if (value.avt == avtFloat && std::isnan(value.GetFloat())) return internalFormat ? "3.7:nan" : "nan";
  std::string text;
  value.Serialize(text, internalFormat);
  return text;
}

}  // namespace

RequestMessengerDeviceStack::~RequestMessengerDeviceStack() = default;

RemoteRequestMessengerDeviceStack::RemoteRequestMessengerDeviceStack(Vanta::IDeviceStackClient& client)
    : m_client(client) {}
RemoteRequestMessengerDeviceStack::~RemoteRequestMessengerDeviceStack() = default;

void RemoteRequestMessengerDeviceStack::SetResponseHandler(IResponseHandler* handler) {
  m_client.SetResponseHandler(handler, nullptr);
}

std::string RemoteRequestMessengerDeviceStack::RegisterApplicationAsync(const std::string& first,
                                                                        const std::string& second,
                                                                        const std::string& third) {
  return m_client.RegisterApplication(first, second, third);
}

std::string RemoteRequestMessengerDeviceStack::SetValueAsync(unsigned long id, const AROVALUE& value, bool flag) {
  if (!IsObjectId(id)) return {};
  return m_client.SetValue(static_cast<ObjectId>(id), Serialised(value, m_internalValueFormat), flag, nullptr);
}

std::string RemoteRequestMessengerDeviceStack::GetValueAsync(unsigned long id, bool flag) {
  if (!IsObjectId(id)) return {};
  return m_client.GetValue(static_cast<ObjectId>(id), flag);
}

std::string RemoteRequestMessengerDeviceStack::RequestAsync(const std::string& request) {
  return m_client.Request(request);
}

std::string RemoteRequestMessengerDeviceStack::SetConfigurationAsync(const std::string& configuration) {
  return m_client.SetConfiguration(configuration);
}

bool RemoteRequestMessengerDeviceStack::SetConfiguration(unsigned long id,
                                                         std::map<PropertyType, Property> properties) {
  return IsObjectId(id) && m_client.SetConfiguration(static_cast<ObjectId>(id), properties);
}

bool RemoteRequestMessengerDeviceStack::GetDeviceConfig(std::string& config, bool flag) {
  return m_client.GetDeviceConfig(config, flag);
}

bool RemoteRequestMessengerDeviceStack::SetDeviceConfig(std::map<std::string, std::string> entries) {
  return m_client.SetDeviceConfig(entries);
}

bool RemoteRequestMessengerDeviceStack::EnableNativeFormat() { return m_client.SetValueFormat("Native"); }

// In both switches the client is told first.
void RemoteRequestMessengerDeviceStack::EnableInternalValueFormat() {
  m_client.SetInternalValueFormat(true);
  m_internalValueFormat = true;
  TAL_LOG(Debug) << "Internal value format now enabled.";
}

void RemoteRequestMessengerDeviceStack::EnableDefaultValueFormat() {
  m_client.SetInternalValueFormat(false);
  m_internalValueFormat = false;
}

}  // namespace Tal
