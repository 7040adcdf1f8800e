// Any bytes at all as dragged data: a plan that keeps its promises, or a refusal.

#include "core/ConversionError.h"
#include "core/PlatformError.h"
#include "core/json/JsonWriter.h"
#include "fcp/audio/FCPAudioPlan.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool promise, const char *what)
{
    if (promise)
        return;
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
}

void checkSegment(const FCPAudioSegment &segment, const FCPAudioPlan &plan)
{
    constexpr double rounding = 1e-6; // seconds
    require(segment.url.isLocalFile(), "a segment plays a file");
    require(segment.fileStart >= 0 && std::isfinite(segment.fileStart), "a segment begins in its file");
    require(segment.offset >= 0 && segment.duration > 0, "a segment lies on the timeline");
    require(segment.offset + segment.duration <= plan.duration + rounding, "a segment ends with the timeline");
    require(segment.gain >= 0 && std::isfinite(segment.gain), "a gain is a number");
}

void checkPlan(const FCPAudioPlan &plan)
{
    require(plan.duration > 0 && plan.duration <= 10'800.001, "a plan lasts up to three hours");
    require(!plan.segments.isEmpty() && plan.segments.size() <= 250, "a plan has 1 to 250 segments");
    double offset = 0;
    for (const FCPAudioSegment &segment : plan.segments) {
        checkSegment(segment, plan);
        require(segment.offset >= offset, "segments are sorted");
        offset = segment.offset;
    }
    jsonBytes([&](JsonWriter &json) { writeAudioPlan(json, plan); });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size)
{
    try {
        checkPlan(FCPAudioPlan::parse(QByteArrayView(data, static_cast<qsizetype>(size))));
    } catch (const ConversionError &error) {
        require(error.message().endsWith(u"。"), "a refusal is a sentence");
    } catch (const PlatformError &) {
        return 0;
    }
    return 0;
}
