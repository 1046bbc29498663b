#include "platform/base/spare_memory.h"

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <bit>
#include <cstddef>
#include <cstdint>

namespace tidebrook {

namespace {

// Only whole pages that were never written to: those are the same in the file.
int giveBackCode(dl_phdr_info *object, std::size_t, void *) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = object->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || (segment.p_flags & PF_W) != 0)
            continue;
        const std::uintptr_t begin = object->dlpi_addr + segment.p_vaddr;
        const std::uintptr_t first = (begin + page - 1) / page * page;
        const std::uintptr_t end = (begin + segment.p_filesz) / page * page;
        if (first < end)
            madvise(std::bit_cast<void *>(first), end - first, MADV_DONTNEED);
    }
    return 0;
}

} // namespace

void giveBackMemory() {
    malloc_trim(0);
    dl_iterate_phdr(giveBackCode, nullptr);
}

} // namespace tidebrook
