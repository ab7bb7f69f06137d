#include <KnxStackApi/GroupValue.h>
#include <Tal/AroValueHelper.h>
#include <Tal/GroupValueAroValue.h>
#include <Tal/MeasureDuration.h>

#include <iostream>

int main() {
  const Tal::MeasureDuration duration("There and back took ");
  const auto sent = Tal::AroValueToGroupValue(Tal::ToAroValue(21.0, avtFloat), 9 << 16 | 1);
  KnxStack::GroupValue received;
  received.SetAsFloat16(-30.0);
  const auto value = Tal::GroupValueToAroValue(received, 9 << 16 | 1);
  if (!sent || !value) return 1;
  std::cout << sent->ToString() << ", " << received.ToString() << ", " << value->GetFloat() << '\n';
}
