// A worker that does as it is told, also what it must not.
#include <condition_variable>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

#include "WorkerTestLimits.h"
#include "platform/Worker.h"

namespace {

volatile unsigned turns = 0;

std::string AnswerTo(const std::string& request, std::string_view file) {
    if (request == "loop") {
        for (;;)
            turns = turns + 1;
    }
    if (request == "wait") {
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable().wait(lock, [] { return false; });
    }
    if (request == "crash")
        std::abort();
    if (request == "sort much") {  // the C library looks at the system's memory for that
        std::vector<int> numbers(100000, 1);
        std::qsort(numbers.data(), numbers.size(), sizeof(int), [](const void*, const void*) { return 0; });
    }
    if (request == "read a file")
        return std::ifstream("/etc/passwd") ? "read" : "refused";
    if (request == "start a program")
        return std::system("exit 7") == 7 << 8 ? "started" : "refused";
    if (request == "fill the memory") {
        try {
            const std::string much(size_t{8} << 30, 'x');
            return std::to_string(much.size());
        } catch (const std::bad_alloc&) {
            return "no memory";
        }
    }
    if (request == "size")
        return std::to_string(file.size());
    if (request == "answer with much")
        return std::string(kTestWorkerLimits.answerSize + 1, 'x');
    return request + std::string(file);
}

int Work(platform::WorkerLine& line) {
    if (!line.Confine(kTestWorkerLimits))
        return platform::kUnfitStatus;
    std::string request;
    std::string_view file;
    while (line.Receive(request, file)) {
        if (!line.Answer(AnswerTo(request, file)))
            return 1;
    }
    return 0;
}

}  // namespace

int main(int count, char** words) {
    return platform::RunWorker(count, words, Work);
}
