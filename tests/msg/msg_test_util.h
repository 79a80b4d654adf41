// Helpers of the message tests: a scratch installation home holding one message file for a
// locale record, and an allocator that fails the n-th allocation of the message layer.
#pragma once

#include <cstdlib>
#include <string>

#include "../intl/intl_test_util.h"
#include "comnlib.h"
#include "core/alloc.h"
#include "msg/msg_internal.h"

// A locale record "lang"/"cs" whose message file "test.loc" lives in a scratch home.
struct MsgHome {
    TempHome home;
    EnvGuard veldar{"VELDAR"};
    ComContext ctx{};
    LocaleRecord loc{};
    ComErrCtx ec{};
    explicit MsgHome(const char *file = "test.loc") {
        veldar.set(home.path);
        loc.language = const_cast<char *>("lang");
        loc.charset = const_cast<char *>("cs");
        ec.locale = &loc;
        ec.file = file;
    }
    ~MsgHome() { com__msgcache_drop(loc.msgcache); }
    MsgHome(const MsgHome &) = delete;
    MsgHome &operator=(const MsgHome &) = delete;
    void write(const std::string &text, const char *file = "test.loc") const {
        home.write(std::string("locales/lang/cs/") + file, text);
    }
    int32_t count() const { return loc.msgcache ? loc.msgcache->count : 0; }
    // The cached entry, or null, without loading anything.
    const ComErrEntry *cached(int32_t section, int32_t number) const {
        if (!loc.msgcache) return nullptr;
        for (const ComErrFile *f = loc.msgcache->files; f; f = f->next)
            for (const ComErrSect *s = f->sections; s; s = s->next)
                if (s->id == section) return com__scan_cache(s, number);
        return nullptr;
    }
};

// Fails the allocation numbered at (0-based) from now on; counts the allocations made.
struct FailingAlloc {
    const uint64_t start = comn::alloc_stats().attempts;
    explicit FailingAlloc(long at) { comn::alloc_fail_at(at + 1); }
    ~FailingAlloc() { comn::alloc_fail_at(0); }
    long calls() const { return static_cast<long>(comn::alloc_stats().attempts - start); }
};
