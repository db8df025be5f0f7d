#include "ui/timeline/recorded_source.h"

namespace netvane::ui {
namespace {

class RecordedSource final : public timeline::Source {
public:
    timeline::Remembered remembered(const timeline::ChartRange& /*range*/) const override
    {
        return {};
    }
    timeline::ProviderFacts facts(
        timeline::Milliseconds from, timeline::Milliseconds to) const override
    {
        return {.from = from, .to = to};
    }
    bool canRecord() const override { return false; }
    bool isRecording() const override { return false; }
    void setRecording(bool /*isRecording*/) override { }
    std::optional<QString> network() const override { return {}; }
    void forgetNetwork() override { }
    void forgetEverything() override { }
};

} // namespace

std::shared_ptr<timeline::Source> recordedSource(const services::Services& /*services*/)
{
    return std::make_shared<RecordedSource>();
}

} // namespace netvane::ui
