#pragma once

// Qt's mutexes, wait conditions and thread joins work through futexes that
// ThreadSanitizer does not see. Under it, the wrappers tell it where each lock
// is taken and let go, so it reports real races and not the locks' own work.
// Elsewhere these cost nothing.

#if defined(__SANITIZE_THREAD__)
#define ZB_RACE_HINTS 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define ZB_RACE_HINTS 1
#endif
#endif

#ifdef ZB_RACE_HINTS
extern "C" void __tsan_acquire(void* address);
extern "C" void __tsan_release(void* address);
#define ZB_HINT_ACQUIRE(address) __tsan_acquire((void*)(address))
#define ZB_HINT_RELEASE(address) __tsan_release((void*)(address))
#else
#define ZB_HINT_ACQUIRE(address) ((void)0)
#define ZB_HINT_RELEASE(address) ((void)0)
#endif
