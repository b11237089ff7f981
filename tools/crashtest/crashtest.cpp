// Kills "tervalon shell" at random points, many times over, and checks after
// each kill that every acknowledged change survived and the file loads.
//   crashtest [--kills N] [--seed S] [--program PATH] [--dir DIR]
#include "tools/crashtest/crashdriver.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>

#include <sys/stat.h>

int main(int argc, char** argv)
{
    int kills = 1000;
    unsigned seed = unsigned(std::chrono::steady_clock::now().time_since_epoch().count());
    std::string program = TERVALON_CLI;
    std::string dir = "/tmp/tervalon-crashtest-" + std::to_string(::getpid());
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--kills")
            kills = std::atoi(argv[i + 1]);
        else if (option == "--seed")
            seed = unsigned(std::strtoul(argv[i + 1], nullptr, 10));
        else if (option == "--program")
            program = argv[i + 1];
        else if (option == "--dir")
            dir = argv[i + 1];
        else {
            std::cerr << "crashtest: unknown option " << option << "\n";
            return 1;
        }
    }
    ::mkdir(dir.c_str(), 0755);
    const std::string file = dir + "/crash.zbd";
    ::unlink(file.c_str());
    std::cout << "crashtest: " << kills << " kills of " << program << ", seed " << seed << std::endl;
    Tervalon::CrashTest::Driver driver(program, file, seed);
    const auto start = std::chrono::steady_clock::now();
    if (!driver.create()) {
        std::cerr << "crashtest: " << driver.failure() << std::endl;
        return 2;
    }
    while (driver.kills() < kills) {
        if (!driver.session()) {
            std::cerr << "crashtest: FAILED (seed " << seed << "): " << driver.failure() << std::endl;
            return 1;
        }
        if (driver.kills() % 100 == 0)
            std::cout << "  " << driver.kills() << " kills, all changes kept" << std::endl;
    }
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    std::cout << "crashtest: " << driver.kills() << " kills, every acknowledged change kept, in " << seconds << " s"
              << std::endl;
    return 0;
}
