// Writes the transcripts of all models anew: see scripts/record-transcripts.
#include <exception>
#include <fstream>
#include <iostream>

#include "tests/transcripts/transcript.h"

int main() {
    try {
        for (OrvexType model = 0; model < orvex_test::kModelCount; ++model) {
            const std::string text = orvex_test::recordTranscript(model);
            std::ofstream file(orvex_test::transcriptPath(model), std::ios::binary);
            file << text << std::flush;
            if (!file) {
                std::cerr << orvex_test::transcriptPath(model) << ": cannot be written\n";
                return 1;
            }
        }
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
