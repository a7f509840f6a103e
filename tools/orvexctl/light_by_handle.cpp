#include "tools/orvexctl/light.h"

namespace orvex::tools {

namespace {

constexpr std::size_t kLongestReply = 1025;

class LightByHandle final : public Light {
  public:
    LightByHandle(std::uint64_t handle, OrvexType model, const std::string& port)
        : Light(model, port), handle_(handle) {}

  private:
    std::uint32_t doOpen() override { return ORVEX_OpenDeviceEx(handle_); }

    std::uint32_t doExecute(const std::string& name, const std::string& value,
                            std::string& reply) override {
        std::vector<char> buffer(kLongestReply);
        const std::uint32_t status =
            ORVEX_ExecuteCommandWithValue(handle_, name.c_str(), buffer.data(),
                                          static_cast<std::uint32_t>(buffer.size()), value.c_str());
        reply = buffer.data();
        return status;
    }

    std::uint32_t doRead(OrvexStruct& record) override {
        return ORVEX_GetOVStruct(handle_, &record);
    }

    std::uint32_t doWrite(const OrvexStruct& record) override {
        return ORVEX_SetOVStruct(handle_, &record);
    }

    void doClose() override { ORVEX_CloseDevice(handle_); }

    std::uint64_t handle_;
};

}  // namespace

std::unique_ptr<Light> lightByHandle(std::uint64_t handle, OrvexType model,
                                     const std::string& port) {
    return std::make_unique<LightByHandle>(handle, model, port);
}

}  // namespace orvex::tools
