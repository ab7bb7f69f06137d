#include <DeviceStack/ServiceError.h>

namespace DeviceStack {

const char* NameOf(ErrorCode code) {
  switch (code) {
    case ErrorCode::None: return "None";
    case ErrorCode::NotRegistered: return "NotRegistered";
    case ErrorCode::InvalidApplication: return "InvalidApplication";
    case ErrorCode::UnknownObject: return "UnknownObject";
    case ErrorCode::NoValueObject: return "NoValueObject";
    case ErrorCode::NoValueYet: return "NoValueYet";
    case ErrorCode::InvalidValue: return "InvalidValue";
    case ErrorCode::WrongType: return "WrongType";
    case ErrorCode::RefusedValue: return "RefusedValue";
    case ErrorCode::NotSent: return "NotSent";
    case ErrorCode::InvalidRequest: return "InvalidRequest";
    case ErrorCode::InvalidConfiguration: return "InvalidConfiguration";
    case ErrorCode::Internal: return "Internal";
    case ErrorCode::Injected: return "Injected";
  }
  return "Unknown";
}

}  // namespace DeviceStack
