// What must be reached, in ratios of the same run.
#pragma once

namespace Bench {

struct Goal {
  const char* group;  ///< operations: "direct_encode/" takes the geometric mean of all but the mix; else one operation
  const char* baseline;  ///< group or operation that it is compared with
  double limit;          ///< ratio at most
};

constexpr Goal kGoals[] = {
    {"direct_encode/", "bare_encode/", 2.7},
    {"direct_encode/9.001", "bare_encode/9.001", 3.7},
    {"direct_encode/mixed", "bare_encode/mixed", 1.25},
    {"map_encode/", "bare_encode/", 5},
    {"map_encode/mixed", "bare_encode/mixed", 2.5},
    {"map_decode/", "bare_decode/", 5},
    {"map_decode/mixed", "bare_decode/mixed", 2.5},
    {"direct_decode/9.001", "cpu_timer", 1.1},
    {"direct_decode/16.001", "cpu_timer", 1.1},
    {"direct_decode/11.001", "cpu_timer_and_calendar", 1.1},
    {"direct_decode/19.001", "cpu_timer_and_calendar", 1.1},
    {"messenger/1", "hand_over", 1.5},
    {"start/talctl", "start/empty", 1.5},
};

/// What must be reached in nanoseconds.
struct TimeGoal {
  const char* operation;
  const char* minus;  ///< beyond this operation; empty: in all
  double nanoseconds;
};

constexpr TimeGoal kTimeGoals[] = {
    {"check/mixed", "map_decode/mixed", 10}, {"converter_with_init", "", 100},
    {"talctl_line/encode", "", 500},         {"talctl_line/decode_map", "", 500},
    {"talctl_line/encode_json", "", 1000},   {"talctl_line/decode_map_json", "", 1000},
};

}  // namespace Bench
