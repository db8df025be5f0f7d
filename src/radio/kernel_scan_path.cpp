#include "base/background_work.h"
#include "radio/scan_path.h"

using namespace Qt::Literals::StringLiterals;

namespace netvane::radio {
namespace {

base::Failure refusal(const base::Failure& failure)
{
    if (failure.kind == base::FailureKind::NotAllowed)
        return {failure.kind,
            u"Scanning takes NetworkManager, iwd or wpa_supplicant, or more rights"_s};
    return {base::FailureKind::Other, u"The kernel refused to scan: "_s + failure.text};
}

class KernelScanPath : public ScanPath {
public:
    KernelScanPath(std::shared_ptr<ScanKernel> kernel, base::WorkQueue& queue)
        : m_kernel(std::move(kernel))
        , m_queue(queue)
    {
    }

    void requestScan(const ScanInterface& interface) override
    {
        base::runInBackground(
            m_queue, this, [kernel = m_kernel, interface] { return kernel->trigger(interface); },
            [this](const base::Result<std::monostate>& answer) {
                if (!answer)
                    Q_EMIT failed(refusal(answer.failure()));
            });
    }

private:
    const std::shared_ptr<ScanKernel> m_kernel;
    base::WorkQueue& m_queue;
};

} // namespace

std::unique_ptr<ScanPath> makeKernelScanPath(
    std::shared_ptr<ScanKernel> kernel, base::WorkQueue& queue)
{
    return std::make_unique<KernelScanPath>(std::move(kernel), queue);
}

} // namespace netvane::radio
