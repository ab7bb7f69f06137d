// An application: registers, reads a temperature, and switches the heating. Here the house is inside the process; with
// a client of a device-stack service elsewhere, only main() changes.
#include <DeviceStack/EmbeddedDeviceStack.h>
#include <Knx/LoopbackBus.h>
#include <Tal/AroValueHelper.h>
#include <Tal/DscAsyncRequestMessenger.h>

#include <boost/date_time/posix_time/posix_time_types.hpp>
#include <iostream>

constexpr unsigned long kTemperature = 100101;  // communication object 1 of logical device 1
constexpr unsigned long kHeating = 100103;      // communication object 2

/// Tells what went wrong, if anything did.
bool Succeeded(const char* what, const Tal::Docket& docket) {
  if (!docket.IsAnswered()) std::cerr << what << ": no answer in time\n";
  if (docket.IsAnswered() && !docket.IsReplyValid()) std::cerr << what << ": " << docket.ReadDeliveryError() << '\n';
  return docket.IsAnswered() && docket.IsReplyValid();
}

bool ControlHeating(Tal::DscAsyncRequestMessenger& messenger) {
  if (!Succeeded("register", messenger.RegisterApplication("heating", "1.0", ""))) return false;
  const Tal::Docket docket = messenger.GetValue(kTemperature, false);
  if (!Succeeded("read the temperature", docket)) return false;
  AROVALUE temperature;
  if (!temperature.Deserialize(docket.ReadReply()) || temperature.avt != avtFloat) return false;
  const bool isCold = temperature.GetFloat() < 20.0;
  std::cout << temperature.GetFloat() << " degrees: heating " << (isCold ? "on" : "off") << '\n';
  return Succeeded("switch the heating", messenger.SetValue(kHeating, Tal::ToAroValue(isCold, avtBool), false));
}

int main() {
  Knx::LoopbackBus bus;
  DeviceStack::EmbeddedDeviceStack service(DeviceStack::ParseInstallation(R"({
      "name": "flat", "address": "1.1.1", "objects": [
        {"device": 1, "number": 1, "name": "temperature", "dpt": "9.001", "groupAddress": "1/0/1",
         "flags": ["write", "update"], "initial": 18.5},
        {"device": 1, "number": 2, "name": "heating", "dpt": "1.001", "groupAddress": "1/0/2",
         "flags": ["read", "transmit"]}]})",
                                                                          "the flat"),
                                           bus);
  Tal::RemoteRequestMessengerDeviceStack adapter(service);
  Tal::DscAsyncRequestMessenger messenger(adapter, boost::posix_time::seconds(2), 1);  // wait 2 s, ask twice at most
  messenger.SetAsResponseHandler();
  const bool isDone = ControlHeating(messenger);
  messenger.UnsetAsResponseHandler();
  return isDone ? 0 : 1;
}
