// Which reply answers which query: the code each waiting function sends and
// the code the controller sends back for it. With matched replies on, a
// getter's wait ends only on a reply of that code. A new waiting function
// whose reply should be matched is one row here.

#include "api/Extensions.h"

#include <algorithm>
#include <iterator>

namespace qrx::api {

namespace {

struct QueryReply
{
    quint16 query;
    quint16 reply;
};

constexpr QueryReply kReplies[] = {
    {0x2001, 0x2003}, // servo_power_on: servo report
    {0x2102, 0x2103}, // get_current_mode, continue_job: mode report
    {0x2202, 0x2203}, // get_current_coord: coordinate report
    {0x2301, 0x2303}, // servo_power_off: deadman report
    {0x2602, 0x2603}, // get_jogging_speed: speed report
    {0x2A04, 0x2A05}, // get_motor_vel
    {0x2A06, 0x2A07}, // get_motor_torque
    {0x2A0A, 0x2A0B}, // get_motor_overload
    {0x2F07, 0x2F08}, // get_current_position
    {0x3301, 0x3303}, // set_axis_zero_position
    {0x3309, 0x330A}, // get_single_cycle
    {0x3602, 0x3603}, // get_dout
    {0x3605, 0x3606}, // get_din
    {0x3608, 0x3609}, // get_aout
    {0x360A, 0x360B}, // get_ain
    {0x3806, 0x3807}, // query_tool_hand_param
    {0x380B, 0x380C}, // get_current_tool_hand
    {0x3D02, 0x3D03}, // get_robot_running_state
    {0x5605, 0x5606}, // get_GPosition
    {0x560B, 0x560C}, // get_global_variant, get_global_var
    {0x7012, 0x7013}, // get_current_sync_position
    {0x7201, 0x7204}, // four_point_calculation
    {0x7205, 0x7206}, // result_for_DH
    {0x7207, 0x7208}, // ask_four_point
};

constexpr bool sortedByQuery()
{
    for (std::size_t i = 1; i < std::size(kReplies); ++i) {
        if (kReplies[i - 1].query >= kReplies[i].query)
            return false;
    }
    return true;
}
static_assert(sortedByQuery(), "rows are sorted by query code, one row per query");

} // namespace

quint16 replyCodeFor(quint16 query)
{
    const auto row = std::lower_bound(std::begin(kReplies), std::end(kReplies), query,
                                      [](const QueryReply &r, quint16 code) { return r.query < code; });
    return row != std::end(kReplies) && row->query == query ? row->reply : 0;
}

QVector<quint16> answeringReplyCodes()
{
    QVector<quint16> codes;
    for (const auto &row : kReplies) {
        if (!codes.contains(row.reply))
            codes.append(row.reply);
    }
    return codes;
}

} // namespace qrx::api
