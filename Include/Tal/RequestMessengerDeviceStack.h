// The seam between the request messenger and the device-stack service.
#pragma once

#include <BasePlatform/AroValue.h>
#include <DeviceStackClient/IDeviceStackClient.h>
#include <Tal/Export.h>

#include <atomic>
#include <map>
#include <string>

namespace Tal {

/// What DscAsyncRequestMessenger needs of a device-stack service. The ...Async operations send a request and return its
/// id at once; an empty id means that it was not accepted. The answer comes later through the response handler, on
/// another thread and never inside the call. The others are done when they return.
class TALOBJECTMODEL_EXPORT RequestMessengerDeviceStack {
 public:
  using IResponseHandler = Vanta::IDeviceStackClient::IResponseHandler;  ///< receives answers
  using PropertyType = Vanta::IDeviceStackClient::PropertyType;          ///< what of an object is configured
  using Property = Vanta::IDeviceStackClient::Property;                  ///< a property's value as text

  virtual ~RequestMessengerDeviceStack();
  /// Who receives the answers; null: nobody.
  virtual void SetResponseHandler(IResponseHandler* handler) = 0;
  /// Registers the application that the three texts identify. @return  the request's id.
  virtual std::string RegisterApplicationAsync(const std::string& first, const std::string& second,
                                               const std::string& third) = 0;
  /// Sets an object's value. @return  the request's id.
  virtual std::string SetValueAsync(unsigned long id, const AROVALUE& value, bool flag) = 0;
  /// Reads an object's value. @return  the request's id.
  virtual std::string GetValueAsync(unsigned long id, bool flag) = 0;
  /// Sends a free-form request. @return  the request's id.
  virtual std::string RequestAsync(const std::string& request) = 0;
  /// Replaces the configuration. @return  the request's id.
  virtual std::string SetConfigurationAsync(const std::string& configuration) = 0;
  /// Configures one object. @return success.
  virtual bool SetConfiguration(unsigned long id, std::map<PropertyType, Property> properties) = 0;
  /// Reads the device's configuration. @return success.
  virtual bool GetDeviceConfig(std::string& config, bool flag) = 0;
  /// Changes entries of the device's configuration. @return success.
  virtual bool SetDeviceConfig(std::map<std::string, std::string> entries) = 0;
  /// Chooses the format of values "Native". @return success.
  virtual bool EnableNativeFormat() = 0;
  /// Values travel in the internal form of AROVALUE::Serialize() from now on.
  virtual void EnableInternalValueFormat() = 0;
  /// Values travel in the default form from now on, as at the start.
  virtual void EnableDefaultValueFormat() = 0;
};

/// Forwards everything to a client of the device-stack service, which must outlive it. Serialises values in the form
/// that is enabled; NaN of type avtFloat as "nan" or "3.7:nan". Object identifiers have 32 bits: a larger one is not
/// accepted. May be called from any thread; no lock is taken, the form in force is atomic.
class TALOBJECTMODEL_EXPORT RemoteRequestMessengerDeviceStack final : public RequestMessengerDeviceStack {
 public:
  /// @param client  must outlive this object.
  explicit RemoteRequestMessengerDeviceStack(Vanta::IDeviceStackClient& client);
  ~RemoteRequestMessengerDeviceStack() override;

  void SetResponseHandler(IResponseHandler* handler) override;
  std::string RegisterApplicationAsync(const std::string& first, const std::string& second,
                                       const std::string& third) override;
  std::string SetValueAsync(unsigned long id, const AROVALUE& value, bool flag) override;
  std::string GetValueAsync(unsigned long id, bool flag) override;
  std::string RequestAsync(const std::string& request) override;
  std::string SetConfigurationAsync(const std::string& configuration) override;
  bool SetConfiguration(unsigned long id, std::map<PropertyType, Property> properties) override;
  bool GetDeviceConfig(std::string& config, bool flag) override;
  bool SetDeviceConfig(std::map<std::string, std::string> entries) override;
  bool EnableNativeFormat() override;
  /// One DEBUG record.
  void EnableInternalValueFormat() override;
  void EnableDefaultValueFormat() override;

 private:
  Vanta::IDeviceStackClient& m_client;
  std::atomic<bool> m_internalValueFormat{false};
};

}  // namespace Tal
