// The client of the device-stack service, which keeps the objects of the installation.
#pragma once

#include <DeviceStackClient/Export.h>

#include <cstdint>
#include <map>
#include <string>

namespace Vanta {

/// Requests to the device-stack service.
///
/// The operations that return a string send a request and return its id at once; an empty id means that the request
/// was not accepted. The answer comes later, on a thread of the client's own and never inside the call, through the
/// response handler, under the same id. The other operations are done when they return.
///
/// Operations may be called from any thread.
class DEVICESTACKCLIENT_EXPORT IDeviceStackClient {
 public:
  /// Object-model identifier.
  using AROOBJECTID = std::uint32_t;

  /// A property of an object's configuration. Every 32-bit number is legal.
  enum class PropertyType : std::uint32_t {
    Name = 1,           ///< as people call the object
    DatapointType = 2,  ///< "9.001"
    GroupAddress = 3,   ///< "1/2/3"
    Flags = 4,          ///< what it does on the bus
    InitialValue = 5,   ///< what it has before somebody gives it a value
  };
  /// A property's value as text.
  using Property = std::string;

  /// The error part of an answer; present in every answer, with code 0 in a good one.
  class DEVICESTACKCLIENT_EXPORT IError {
   public:
    virtual ~IError();
    /// 0: no error.
    virtual int GetErrorCode() const = 0;
    /// What kind of error, for programs; the service's own text.
    virtual std::string GetFirstDetail() const = 0;
    /// What it is about, for programs; the service's own text.
    virtual std::string GetSecondDetail() const = 0;
    /// What went wrong, for people.
    virtual std::string GetDescription() const = 0;
  };

  /// Receives the answers. @c context is the pointer that was given to SetResponseHandler().
  class DEVICESTACKCLIENT_EXPORT IResponseHandler {
   public:
    /// Answers Request().
    virtual void OnResponse(void* context, const std::string& requestId, const std::string& response,
                            const IError& error) = 0;
    /// Answers RegisterApplication().
    virtual void OnRegisterApplication(void* context, const std::string& requestId, const IError& error) = 0;
    /// Answers a request for the configuration.
    virtual void OnGetConfiguration(void* context, const std::string& requestId, const std::string& configuration,
                                    const IError& error) = 0;
    /// Answers SetConfiguration() with a text.
    virtual void OnSetConfiguration(void* context, const std::string& requestId, const IError& error) = 0;
    /// Answers GetValue().
    virtual void OnGetValue(void* context, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                            const std::string& value, const IError& error) = 0;
    /// Answers SetValue().
    virtual void OnSetValue(void* context, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                            const std::string& value, const IError& error) = 0;
    virtual ~IResponseHandler();
  };

  virtual ~IDeviceStackClient();

  /// Chooses the text form of values from now on: internal (true) or default, see AROVALUE::Serialize().
  virtual void SetInternalValueFormat(bool enabled) = 0;
  /// Configures one object. @return success.
  virtual bool SetConfiguration(AROOBJECTID id, const std::map<PropertyType, Property>& properties) = 0;
  /// Reads the device's configuration. @return success; on failure @p config is unchanged.
  virtual bool GetDeviceConfig(std::string& config, bool flag) = 0;
  /// Changes entries of the device's configuration. @return success.
  virtual bool SetDeviceConfig(const std::map<std::string, std::string>& entries) = 0;
  /// Chooses the format of values by its name. @return success.
  virtual bool SetValueFormat(const std::string& name) = 0;
  /// Sends a free-form request; answered by OnResponse().
  virtual std::string Request(const std::string& request) = 0;
  /// Registers the application that the three texts identify; answered by OnRegisterApplication().
  virtual std::string RegisterApplication(const std::string& first, const std::string& second,
                                          const std::string& third) = 0;
  /// Replaces the configuration; answered by OnSetConfiguration().
  virtual std::string SetConfiguration(const std::string& configuration) = 0;
  /// Reads an object's value; answered by OnGetValue().
  virtual std::string GetValue(AROOBJECTID id, bool flag) = 0;
  /// Sets an object's value, given as serialised text; answered by OnSetValue().
  virtual std::string SetValue(AROOBJECTID id, const std::string& value, bool flag, void* context) = 0;
  /// Chooses who receives the answers, with the context pointer that the callbacks hand back; a null handler: nobody.
  /// When it returns, the previous handler is not and will not be called any more.
  virtual void SetResponseHandler(IResponseHandler* handler, void* context) = 0;
};

}  // namespace Vanta
