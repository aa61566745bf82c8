// How the services of the operating system are reached.
//
// Each service is an abstract class with one implementation per system. Callers write
// `platform::Current<platform::Processes>().List(...)`. A test replaces a service for the length of a scope:
//
//     FakeProcesses fake;
//     platform::ScopedOverride<platform::Processes> guard(fake);
//
// Overrides are process-wide and meant for single-threaded set-up; reading the current service is safe from
// any thread.
#pragma once

#include <atomic>

namespace platform {

/// The implementation for this operating system; lives to process end.
template <class Service>
Service& SystemDefault();

namespace detail {
template <class Service>
inline std::atomic<Service*> overridingService{nullptr};
}

/// The service in force: the system's own, or the one that a ScopedOverride put in its place.
template <class Service>
Service& Current() {
    Service* overriding = detail::overridingService<Service>.load(std::memory_order_acquire);
    return overriding != nullptr ? *overriding : SystemDefault<Service>();
}

template <class Service>
class ScopedOverride {
public:
    explicit ScopedOverride(Service& replacement)
        : mPrevious(detail::overridingService<Service>.exchange(&replacement)) {}
    ~ScopedOverride() { detail::overridingService<Service>.store(mPrevious); }
    ScopedOverride(const ScopedOverride&) = delete;
    ScopedOverride& operator=(const ScopedOverride&) = delete;

private:
    Service* mPrevious;
};

}  // namespace platform
