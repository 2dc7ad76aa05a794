// Fuzzes the parser of the updater's record, because the file may be damaged.

#include "Expect.h"
#include "backends/linux/updates/UpdaterMemory.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto record = nocta::parseUpdaterRecord({reinterpret_cast<const char*>(data), size});
    nocta::expect(nocta::parseUpdaterRecord(nocta::serialized(record)) == record,
                  "a written record reads back the same");
    return 0;
}
