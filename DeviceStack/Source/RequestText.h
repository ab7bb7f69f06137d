// Free-form requests and their answers.
#pragma once

#include <DeviceStack/EmbeddedDeviceStack.h>

#include <string>

#include "ObjectStore.h"

namespace DeviceStack {

/// Answers a request in JSON with JSON on one line. @throws ServiceError  InvalidRequest or UnknownObject.
std::string AnswerRequest(const std::string& text, const ObjectStore& store, const Counters& counters);

}  // namespace DeviceStack
