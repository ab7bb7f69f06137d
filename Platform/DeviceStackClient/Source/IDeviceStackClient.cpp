#include <DeviceStackClient/IDeviceStackClient.h>

namespace Vanta {

IDeviceStackClient::~IDeviceStackClient() = default;
IDeviceStackClient::IError::~IError() = default;
IDeviceStackClient::IResponseHandler::~IResponseHandler() = default;

}  // namespace Vanta
