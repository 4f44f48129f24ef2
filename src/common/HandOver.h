#pragma once
// Marks a hand-over between threads that Qt carries out: a functor queued
// into another thread's event loop, the wait of a blocking queued call, a
// thread join. Qt's own locks give the order, but Qt is not built with
// ThreadSanitizer, so it cannot see it and would report the data handed
// over as a race. handOff(tag) on the giving side before the hand-over and
// takeOver(tag) on the taking side after it state the order, for the one
// tag (usually the object both sides share). Without ThreadSanitizer both
// are empty.
//
//   handOff(&job);                                         // caller
//   QMetaObject::invokeMethod(ctx, [&job] { takeOver(&job); run(job); handOff(&job); },
//                             Qt::BlockingQueuedConnection);
//   takeOver(&job);                                        // caller again

#if defined(__SANITIZE_THREAD__)
#define QRX_HAND_OVER_VISIBLE 1
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define QRX_HAND_OVER_VISIBLE 1
#endif
#endif

#ifdef QRX_HAND_OVER_VISIBLE
#include <sanitizer/tsan_interface.h>
#endif

namespace qrx {

inline void handOff(const void *tag)
{
#ifdef QRX_HAND_OVER_VISIBLE
    __tsan_release(const_cast<void *>(tag));
#else
    (void)tag;
#endif
}

inline void takeOver(const void *tag)
{
#ifdef QRX_HAND_OVER_VISIBLE
    __tsan_acquire(const_cast<void *>(tag));
#else
    (void)tag;
#endif
}

} // namespace qrx
