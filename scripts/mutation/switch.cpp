// SPDX-FileCopyrightText: Velmora
// SPDX-License-Identifier: LicenseRef-Commercial-Usage

// Linked into every program of the copy that scripts/mutate builds: selects the mistake made in this process and
// records which test reaches which. Environment: MUTATION_MADE, the number of the mistake; MUTATION_TRACE, a
// zero-filled file for MUTATION_TESTS records of MUTATION_COUNT bytes, each after a name of 256. The first record
// belongs to no test; the others are named "function" or "function:row" as tests begin, also by several processes at
// once.
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <unordered_map>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using Current = const char *(*)();
constexpr size_t nameSize = 256;

int s_made = 0;
unsigned char *s_trace = nullptr;
size_t s_recordSize = 0;
size_t s_records = 0;

__attribute__((constructor(101))) void begin()
{
    if (const char *made = getenv("MUTATION_MADE"))
        s_made = atoi(made);
    const char *trace = getenv("MUTATION_TRACE");
    if (!trace)
        return;
    s_recordSize = nameSize + size_t(atol(getenv("MUTATION_COUNT")));
    s_records = size_t(atol(getenv("MUTATION_TESTS")));
    // Memory-mapped, so that neither limits nor a kill nor an injected fault gets in the way.
    const int file = open(trace, O_RDWR | O_CLOEXEC);
    if (file < 0)
        abort();
    void *memory = mmap(nullptr, s_recordSize * s_records, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (memory == MAP_FAILED)
        abort();
    s_trace = static_cast<unsigned char *>(memory);
}

/// The number of the test's record. The first record's name holds the number of other records.
size_t recordOf(const std::string &name)
{
    static std::mutex mutex;
    static std::unordered_map<std::string, size_t> known;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = known.find(name);
    if (found != known.end())
        return found->second;
    size_t record = 1 + reinterpret_cast<std::atomic<size_t> *>(s_trace)->fetch_add(1);
    if (record >= s_records || name.size() >= nameSize)
        record = 0;
    else
        memcpy(s_trace + record * s_recordSize, name.data(), name.size());
    known.emplace(name, record);
    return record;
}

size_t currentRecord()
{
    static const auto currentFunction =
        reinterpret_cast<Current>(dlsym(RTLD_DEFAULT, "_ZN5QTest19currentTestFunctionEv"));
    static const auto currentRow = reinterpret_cast<Current>(dlsym(RTLD_DEFAULT, "_ZN5QTest14currentDataTagEv"));
    thread_local const char *lastFunction = nullptr;
    thread_local const char *lastRow = nullptr;
    thread_local size_t last = 0;
    const char *function = currentFunction ? currentFunction() : nullptr;
    const char *row = currentRow ? currentRow() : nullptr;
    if (!function)
        return 0;
    if (function != lastFunction || row != lastRow) {
        lastFunction = function;
        lastRow = row;
        last = recordOf(row ? std::string(function) + ':' + row : std::string(function));
    }
    return last;
}

} // namespace

extern "C" __attribute__((visibility("default"))) bool mutation_on(int number) noexcept
{
    // It would be attributed to another test.
    if (s_trace && nameSize + size_t(number) >= s_recordSize)
        abort();
    if (s_trace)
        s_trace[currentRecord() * s_recordSize + nameSize + size_t(number)] = 1;
    return number == s_made;
}
