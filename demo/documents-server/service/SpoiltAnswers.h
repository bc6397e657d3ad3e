#pragma once

#include "http/BodySink.h"
#include "http/HttpMessage.h"
#include "service/FaultRules.h"

namespace documents {

/** True when the fault keeps the request from having any effect. */
bool preventsEffect(const Fault& fault);

/** The answer to a request that the fault keeps from having any effect. */
Answer preventedAnswer(const Fault& fault, const QByteArray& target);

/** The answer to a request that took effect, with the fault's marks. */
Answer spoilt(Answer answer, const Fault& fault);

/** A reception whose body breaks off where the fault says so, else its answer is spoilt. */
Reception spoilt(Reception reception, const Fault& fault);

} // namespace documents
