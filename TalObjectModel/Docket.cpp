#include <Tal/Docket.h>

namespace Tal {

Docket::Docket() = default;
Docket::Docket(std::string reply, std::string deliveryError, bool isReplyValid, bool isAnswered)
    : m_reply(std::move(reply)),
      m_deliveryError(std::move(deliveryError)),
      m_isReplyValid(isReplyValid),
      m_isAnswered(isAnswered) {}
Docket::Docket(const Docket& other) = default;
Docket& Docket::operator=(const Docket& other) = default;
Docket::~Docket() = default;

void Docket::SetContent(std::string reply, std::string deliveryError, bool isReplyValid, bool isAnswered) {
  m_reply = std::move(reply);
  m_deliveryError = std::move(deliveryError);
  m_isReplyValid = isReplyValid;
  m_isAnswered = isAnswered;
}

bool Docket::IsReplyValid() const { return m_isReplyValid; }
bool Docket::IsAnswered() const { return m_isAnswered; }
const std::string& Docket::ReadReply() const { return m_reply; }
const std::string& Docket::ReadDeliveryError() const { return m_deliveryError; }

}  // namespace Tal
