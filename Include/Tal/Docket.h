// The outcome of a request to the device-stack service.
#pragma once

#include <Tal/Export.h>

#include <string>

namespace Tal {

/// What came of one request. An answered request can still have failed: success is IsAnswered() and IsReplyValid().
/// Not answered: the messenger gave up, or the result was no longer wanted. A plain value without a lock.
class TALOBJECTMODEL_EXPORT Docket {
 public:
  /// Not answered, nothing in it.
  Docket();
  /// @param reply          the text of the answer
  /// @param deliveryError  the service's description of an error
  /// @param isReplyValid   the answer carried no error
  /// @param isAnswered     there was an answer
  Docket(std::string reply, std::string deliveryError, bool isReplyValid, bool isAnswered);
  /// A copy of all four.
  Docket(const Docket& other);
  /// A copy of all four.
  Docket& operator=(const Docket& other);
  ~Docket();

  /// Replaces all four; parameters as of the constructor.
  void SetContent(std::string reply, std::string deliveryError, bool isReplyValid, bool isAnswered);

  /// True when the answer carried no error.
  bool IsReplyValid() const;
  /// True when there was an answer, good or bad.
  bool IsAnswered() const;
  /// The text of the answer: a response, a configuration, a serialised value; empty for answers without one.
  const std::string& ReadReply() const;
  /// The service's description of the error that came with the answer.
  const std::string& ReadDeliveryError() const;

 private:
  std::string m_reply;
  std::string m_deliveryError;
  bool m_isReplyValid = false;
  bool m_isAnswered = false;
};

}  // namespace Tal
