// The catalogue's table of the file connection (port 5000).

#include "protocol/Catalogue.h"
#include "protocol/SortedRows.h"

#include <iterator>

namespace qrx::protocol {
namespace {

constexpr Direction In = Direction::FromController;
constexpr Direction Out = Direction::ToController;

// The file connection (port 5000): codes that never travel on the main link
// and are read by the file transfer alone (0x5502 is also the main link's
// receiveUploadAnswer). Named here for the readers of names (the dissector).
#define fileCode(n, direction) {code::n, direction, #n, Delivery::None, 0}
constexpr Message kFileConnection[] = {
    fileCode(AnnounceUpload, Out),
    fileCode(UploadAnswer, In),
    fileCode(RequestFile, Out),
    fileCode(FileHeader, In),
    fileCode(UploadChunk, Out),
    fileCode(UploadEnd, Out),
    fileCode(UploadFinished, In),
    fileCode(FileBegins, In),
    fileCode(FileData, In),
    fileCode(FileStored, Out),
    fileCode(FileReady, Out),
    fileCode(AbortTransfer, Out),
    fileCode(ExportFinished, Out),
};
#undef fileCode

static_assert(ascending(kFileConnection, std::size(kFileConnection)), "file connection rows sorted by code, one row per code");

} // namespace

const Message *findFileCode(quint16 code, Direction direction)
{
    const Message *row = lookup(kFileConnection, std::size(kFileConnection), code);
    return (row && row->direction == direction) ? row : nullptr;
}

Rows fileConnection()
{
    return {kFileConnection, int(std::size(kFileConnection))};
}

} // namespace qrx::protocol
