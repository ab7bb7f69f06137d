// Synchronous requests over the asynchronous device-stack client.
#pragma once

#include <DeviceStackClient/IDeviceStackClient.h>
#include <Tal/Docket.h>
#include <Tal/Export.h>
#include <Tal/Function.h>
#include <Tal/RequestMessengerDeviceStack.h>

#include <boost/date_time/posix_time/posix_time_duration.hpp>
#include <boost/thread/condition_variable.hpp>
#include <boost/thread/mutex.hpp>
#include <map>
#include <memory>
#include <string>

namespace Tal {

/// Sends a request, waits for the answer with its id, and returns a copy of what came: the reply, or the service's
/// error. An empty id or a time-out makes it try again until its attempts are used up; then the docket is not answered.
///
/// Any number of threads may call at once. Answers come in on the client's thread between SetAsResponseHandler() and
/// UnsetAsResponseHandler(); the messenger must live that long, and the client must not answer inside a call. A request
/// holds the messenger's mutex except while it waits, so requests are sent one after the other.
///
///     Tal::RemoteRequestMessengerDeviceStack stack(client);
///     Tal::DscAsyncRequestMessenger messenger(stack, boost::posix_time::seconds(5), 2);
///     messenger.SetAsResponseHandler();
///     const Tal::Docket docket = messenger.GetValue(100101, false);
///     if (docket.IsAnswered() && docket.IsReplyValid()) Use(docket.ReadReply());
///     messenger.UnsetAsResponseHandler();
class TALOBJECTMODEL_EXPORT DscAsyncRequestMessenger : public Vanta::IDeviceStackClient::IResponseHandler {
 public:
  using AROOBJECTID = Vanta::IDeviceStackClient::AROOBJECTID;    ///< object-model identifier
  using IError = Vanta::IDeviceStackClient::IError;              ///< the error part of an answer
  using PropertyType = Vanta::IDeviceStackClient::PropertyType;  ///< what of an object is configured
  using Property = Vanta::IDeviceStackClient::Property;          ///< a property's value as text

  /// @param messenger  must outlive this object.
  /// @param timeout    how long to wait where an operation says zero; infinite: as long as it takes.
  /// @param retries    a request is sent at most once more than this. All ones: never at all.
  DscAsyncRequestMessenger(RequestMessengerDeviceStack& messenger, boost::posix_time::time_duration timeout,
                           unsigned int retries);
  DscAsyncRequestMessenger(const DscAsyncRequestMessenger&) = delete;
  DscAsyncRequestMessenger& operator=(const DscAsyncRequestMessenger&) = delete;

  /// Receives the service's answers from now on. Before, no request is answered.
  void SetAsResponseHandler();
  /// Receives no answers any more; what Vanta::IDeviceStackClient::SetResponseHandler() promises of the end holds.
  void UnsetAsResponseHandler();

  /// Chooses the format of values "Native". @return success.
  bool EnableNativeFormat();

  /// Registers the application that the three texts identify, and waits. Takes up to time-out x attempts.
  Docket RegisterApplication(const std::string& first, const std::string& second, const std::string& third);
  /// Sets the value of object @p id, and waits; the reply is the value as the service tells it. @p flag goes to the
  /// service as it is. An identifier of more than 32 bits is never accepted.
  Docket SetValue(unsigned long id, const AROVALUE& value, bool flag);
  /// Reads the value of object @p id, and waits; the reply is serialised text (AROVALUE::Deserialize()).
  Docket GetValue(unsigned long id, bool flag);
  /// Sends a free-form request, and waits; the reply is the response.
  /// @param request  what the service understands.
  /// @param timeout  zero: the default; infinite: as long as it takes.
  Docket Request(const std::string& request, boost::posix_time::time_duration timeout);
  /// Replaces the service's configuration, and waits.
  /// @param configuration    what the service understands.
  /// @param timeout          as of Request().
  /// @param isStillRelevant  asked before waiting, after each wake-up and once after the wait, with the mutex held.
  ///                         False ends the request with an empty docket. Nobody polls: a change is noticed at the
  ///                         next answer to anybody, or at the time-out. What it throws reaches the caller.
  Docket SetConfiguration(const std::string& configuration, boost::posix_time::time_duration timeout,
                          const function<bool()>& isStillRelevant);

  /// Sends a value once and does not wait. @return true when the service accepted the request.
  bool SetValueAndIgnoreResponse(unsigned long id, const AROVALUE& value, bool flag);

  /// Configures object @p id. Takes no lock and does not wait. The docket is answered, and valid when the call
  /// succeeded.
  Docket SetConfiguration(unsigned long id, std::map<PropertyType, Property> properties);
  /// Reads the device's configuration. Takes no lock and does not wait. @return success.
  bool GetDeviceConfig(std::string& config, bool flag);
  /// Changes entries of the device's configuration. Takes no lock and does not wait. @return success.
  bool SetDeviceConfig(std::map<std::string, std::string> entries);

  /// An answer from the client, which calls this on its own thread. The first argument is not looked at. An error
  /// leaves one ERROR record, and another one when nobody waits for its id; such an answer is dropped.
  /// @{
  void OnResponse(void* context, const std::string& requestId, const std::string& response,
                  const IError& error) override;
  void OnRegisterApplication(void* context, const std::string& requestId, const IError& error) override;
  void OnGetConfiguration(void* context, const std::string& requestId, const std::string& configuration,
                          const IError& error) override;
  void OnSetConfiguration(void* context, const std::string& requestId, const IError& error) override;
  void OnGetValue(void* context, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                  const std::string& value, const IError& error) override;
  void OnSetValue(void* context, const std::string& requestId, AROOBJECTID id, const std::string& urn,
                  const std::string& value, const IError& error) override;
  /// @}
  /// UnsetAsResponseHandler() must have returned, and no request may wait.
  ~DscAsyncRequestMessenger() override;

 private:
  using Duration = boost::posix_time::time_duration;
  using Lock = boost::unique_lock<boost::mutex>;

  template <class Step>
  Docket SynchronizeRequest(const Duration& timeout, const function<bool()>& isStillRelevant, Step step);
  std::shared_ptr<Docket> WaitForDocket(Lock& lock, const std::string& id, const Duration& timeout,
                                        const function<bool()>& isStillRelevant);
  bool WaitForAnswer(Lock& lock, const std::string& id, const Duration& timeout,
                     const function<bool()>& isStillRelevant);
  void UpdateDocketList(const std::string& id, const std::string& reply, const IError& error);

  RequestMessengerDeviceStack& m_messenger;
  const Duration m_defaultTimeout;
  const unsigned int m_attempts;
  boost::mutex m_mutex;
  boost::condition_variable m_answerSignal;
  std::map<std::string, std::weak_ptr<Docket>> m_docketList;
};

}  // namespace Tal
