// libFuzzer target of the job file reader: any bytes read as a job file
// either fail with a diagnostic or give a program whose written text reads
// back to the same text (write -> read -> write is a fixed point).

#include "job/JobReadDriver.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::ostringstream out;
    qrx::JobReadDriver driver(out);
    auto program = driver.read(std::string_view(reinterpret_cast<const char *>(data), size));
    if (!program)
        return 0;
    const std::string text = program->text(program->date);
    std::ostringstream again;
    qrx::JobReadDriver second(again);
    auto back = second.read(text);
    if (!back || back->text(back->date) != text)
        std::abort();
    return 0;
}
