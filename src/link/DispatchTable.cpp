#include "link/DispatchTable.h"

#include <algorithm>

namespace qrx {

namespace {

bool dispatched(const DispatchRow &row)
{
    return row.delivery != protocol::Delivery::Connection;
}

} // namespace

const DispatchRow *findDispatchRow(quint16 code)
{
    const DispatchRow *row = protocol::find(code);
    return (row && dispatched(*row)) ? row : nullptr;
}

int dispatchRowCount()
{
    const protocol::Rows rows = protocol::incoming();
    return int(std::count_if(rows.begin(), rows.end(), dispatched));
}

} // namespace qrx
