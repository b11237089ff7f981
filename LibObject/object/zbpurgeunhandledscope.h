#pragma once

namespace Tervalon {

// Drops unhandled data from every object written on this thread while it
// lives, and puts the setting back as it was when it ends. Purging belongs to
// one write of one file (the first saves of an upgraded file), never to the
// process: other files open in the same run keep their unknown fields.
class ZBPurgeUnhandledScope {
public:
    explicit ZBPurgeUnhandledScope(bool purge = true);
    ~ZBPurgeUnhandledScope();
    ZBPurgeUnhandledScope(const ZBPurgeUnhandledScope&) = delete;
    ZBPurgeUnhandledScope& operator=(const ZBPurgeUnhandledScope&) = delete;

private:
    bool m_previous;
};

} // namespace Tervalon
