// Runs the checks with one line for each: "ok NAME", or "FAILED NAME" with what was wrong before
// it.
#include <gtest/gtest.h>

#include <iostream>

namespace {

class LinePrinter final : public ::testing::EmptyTestEventListener {
  private:
    void OnTestPartResult(const ::testing::TestPartResult& result) override {
        if (result.failed()) {
            const char* file = result.file_name();
            std::cout << "  " << (file != nullptr ? file : "exception") << ":"
                      << result.line_number() << ": " << result.message() << std::endl;
        }
    }

    void OnTestEnd(const ::testing::TestInfo& info) override {
        const bool passed = info.result()->Passed() && !info.result()->Skipped();
        std::cout << (passed ? "ok " : "FAILED ") << info.test_suite_name() << "." << info.name()
                  << " (" << info.result()->elapsed_time() << " ms)" << std::endl;
    }
};

}  // namespace

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::TestEventListeners& listeners = ::testing::UnitTest::GetInstance()->listeners();
    delete listeners.Release(listeners.default_result_printer());
    listeners.Append(new LinePrinter);
    return RUN_ALL_TESTS();
}
