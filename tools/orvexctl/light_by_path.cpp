#include "api/driver_exception.h"
#include "device/light_device.h"
#include "tools/orvexctl/light.h"

namespace orvex::tools {

namespace {

constexpr unsigned kBaudrate = 9600;

class LightByPath final : public Light {
  public:
    LightByPath(OrvexType model, const std::string& port)
        : Light(model, port), device_(model, port) {}

  private:
    template <typename Action>
    static std::uint32_t statusOf(Action action) {
        try {
            action();
            return ORVEX_OK;
        } catch (const DriverException& e) {
            return e.error_code();
        }
    }

    std::uint32_t doOpen() override {
        bool opened = false;
        const std::uint32_t status =
            statusOf([&] { opened = device_.openConnection(kBaudrate) != nullptr; });
        return status == ORVEX_OK && !opened ? ORVEX_ERR_NO_DEVICE : status;
    }

    std::uint32_t doExecute(const std::string& name, const std::string& value,
                            std::string& reply) override {
        return statusOf([&] { device_.executeCommand(name, reply, value); });
    }

    std::uint32_t doRead(OrvexStruct& record) override {
        device_.getOVStruct(record);
        return ORVEX_OK;
    }

    std::uint32_t doWrite(const OrvexStruct& record) override {
        return statusOf([&] { device_.setOVStruct(record); });
    }

    void doClose() override { device_.closeConnection(false); }

    LightDevice device_;
};

}  // namespace

std::unique_ptr<Light> lightByPath(OrvexType model, const std::string& port) {
    return std::make_unique<LightByPath>(model, port);
}

}  // namespace orvex::tools
