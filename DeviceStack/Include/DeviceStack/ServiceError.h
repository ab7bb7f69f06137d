// What the embedded device stack answers when it cannot do what it was asked for.
#pragma once

#include <DeviceStackClient/IDeviceStackClient.h>

#include <string>

namespace DeviceStack {

/// Why the service cannot do it; what GetErrorCode() gives.
enum class ErrorCode : int {
  None = 0,                   ///< all is well
  NotRegistered = 1,          ///< no application has been registered yet
  InvalidApplication = 2,     ///< an application without a name
  UnknownObject = 3,          ///< no object has this identifier, or this name
  NoValueObject = 4,          ///< the object is there, but has no value: a device or a channel
  NoValueYet = 5,             ///< the object has not been given a value
  InvalidValue = 6,           ///< a text that is no serialised value
  WrongType = 7,              ///< a value of another type than the object's
  RefusedValue = 8,           ///< a value that the object's datapoint type does not take
  NotSent = 9,                ///< the bus did not take the telegram
  InvalidRequest = 10,        ///< a free-form request that is none
  InvalidConfiguration = 11,  ///< an installation that cannot be used
  Internal = 12,              ///< want of memory, or a fault in the service
  Injected = 99,              ///< asked for by a test
};

/// "UnknownObject"
const char* NameOf(ErrorCode code);

/// First detail: the code's name. Second detail: what it is about, an identifier or a place in a text.
class ServiceError final : public Vanta::IDeviceStackClient::IError {
 public:
  /// No error.
  ServiceError() = default;
  /// An error; @p about is the second detail.
  ServiceError(ErrorCode code, std::string about, std::string description)
      : m_code(code), m_about(std::move(about)), m_description(std::move(description)) {}

  int GetErrorCode() const override { return static_cast<int>(m_code); }
  std::string GetFirstDetail() const override { return m_code == ErrorCode::None ? "" : NameOf(m_code); }
  std::string GetSecondDetail() const override { return m_about; }
  std::string GetDescription() const override { return m_description; }

 private:
  ErrorCode m_code = ErrorCode::None;
  std::string m_about;
  std::string m_description;
};

}  // namespace DeviceStack
