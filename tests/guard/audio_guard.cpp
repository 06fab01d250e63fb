// SPDX-License-Identifier: AGPL-3.0-or-later
#include "audio_guard.h"

#include <cstddef>
#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

thread_local bool guarded = false;
thread_local int found = 0;
thread_local const char* first = nullptr;

void note (const char* name) noexcept
{
    if (guarded && found++ == 0)
        first = name;
}

/** The function of that name that stands behind ours; a call of it is noted. */
template <typename Function>
class Watched
{
public:
    explicit Watched (const char* functionName) noexcept
        : name (functionName), next (reinterpret_cast<Function*> (dlsym (RTLD_NEXT, functionName)))
    {
    }

    template <typename... Arguments>
    auto operator() (Arguments... arguments) const
    {
        note (name);
        return next (arguments...);
    }

private:
    const char* name;
    Function* next;
};

}  // namespace

AudioGuard::AudioGuard() noexcept
{
    found = 0;
    first = nullptr;
    guarded = true;
}

AudioGuard::~AudioGuard()
{
    guarded = false;
}

int AudioGuard::calls() noexcept
{
    return found;
}

const char* AudioGuard::firstCall() noexcept
{
    return first != nullptr ? first : "";
}

// glibc's own names for what is replaced, since dlsym may itself allocate.
extern "C"
{
    void* __libc_malloc (std::size_t);
    void* __libc_calloc (std::size_t, std::size_t);
    void* __libc_realloc (void*, std::size_t);
    void __libc_free (void*);

    void* malloc (std::size_t size)
    {
        note ("malloc");
        return __libc_malloc (size);
    }

    void* calloc (std::size_t count, std::size_t size)
    {
        note ("calloc");
        return __libc_calloc (count, size);
    }

    void* realloc (void* block, std::size_t size)
    {
        note ("realloc");
        return __libc_realloc (block, size);
    }

    void free (void* block)
    {
        if (block != nullptr)
            note ("free");

        __libc_free (block);
    }

    void* aligned_alloc (std::size_t alignment, std::size_t size)
    {
        static const Watched<void*(std::size_t, std::size_t)> call ("aligned_alloc");
        return call (alignment, size);
    }

    // --- waiting ---------------------------------------------------------------------------------------

    int pthread_mutex_lock (pthread_mutex_t* mutex)
    {
        static const Watched<int (pthread_mutex_t*)> call ("pthread_mutex_lock");
        return call (mutex);
    }

    int pthread_cond_wait (pthread_cond_t* condition, pthread_mutex_t* mutex)
    {
        static const Watched<int (pthread_cond_t*, pthread_mutex_t*)> call ("pthread_cond_wait");
        return call (condition, mutex);
    }

    // --- files -----------------------------------------------------------------------------------------

    ssize_t write (int file, const void* data, std::size_t size)
    {
        static const Watched<ssize_t (int, const void*, std::size_t)> call ("write");
        return call (file, data, size);
    }

    ssize_t read (int file, void* data, std::size_t size)
    {
        static const Watched<ssize_t (int, void*, std::size_t)> call ("read");
        return call (file, data, size);
    }

    int stat64 (const char* path, struct stat64* status)
    {
        static const Watched<int (const char*, struct stat64*)> call ("stat64");
        return call (path, status);
    }

    int access (const char* path, int mode)
    {
        static const Watched<int (const char*, int)> call ("access");
        return call (path, mode);
    }
}
