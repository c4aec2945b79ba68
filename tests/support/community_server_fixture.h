// A real FTP server on loopback for the community tests: tools/community-server, or its
// misbehaving twin tests/support/hostile_ftp_server.py, started on a free port in a
// temporary folder and stopped again; the plug-in finds it through the host's
// community server setting. A test suite starts one server and shares it (Python takes
// a second to start on a busy machine).
#pragma once

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include "host/outside_services.h"

#ifndef VISTARIG_SOURCE_DIR
#error "VISTARIG_SOURCE_DIR must name the source tree"
#endif

struct LoopbackFtpServer {
    pid_t pid = -1;
    int port = 0;
    std::string folder;  // served: holds Vistarig/CommunityFiles and Vistarig/Versions.txt

    // False with `error` when the server didn't come up within 20 s.
    bool start(bool hostile, std::string& error) {
        char pattern[] = "/tmp/vistarig-ftp-XXXXXX";
        if (!mkdtemp(pattern)) return error = "no temporary folder", false;
        folder = pattern;
        const std::string script = std::string(VISTARIG_SOURCE_DIR) +
                                   (hostile ? "/tests/support/hostile_ftp_server.py" : "/tools/community-server");
        int out[2];
        if (pipe(out) != 0) return error = "no pipe", false;
        pid = fork();
        if (pid == 0) {
            dup2(out[1], 1);
            close(out[0]);
            close(out[1]);
            if (hostile)
                execl("/usr/bin/python3", "python3", script.c_str(), "--folder", folder.c_str(), "--port", "0",
                      static_cast<char*>(nullptr));
            else
                execl("/usr/bin/python3", "python3", script.c_str(), "--folder", folder.c_str(), "--port", "0",
                      "--host", "127.0.0.1", static_cast<char*>(nullptr));
            _exit(127);
        }
        close(out[1]);
        std::string line;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        char c;
        while (std::chrono::steady_clock::now() < end) {
            fd_set set;
            FD_ZERO(&set);
            FD_SET(out[0], &set);
            timeval wait{0, 200000};
            if (select(out[0] + 1, &set, nullptr, nullptr, &wait) <= 0) continue;
            if (read(out[0], &c, 1) != 1) break;
            if (c == '\n') break;
            line += c;
        }
        close(out[0]);
        const size_t colon = line.rfind(':');
        if (line.rfind("listening on", 0) != 0 || colon == std::string::npos)
            return error = "the server said \"" + line + "\"", stop(), false;
        port = std::stoi(line.substr(colon + 1));
        xphost::setCommunityServer("127.0.0.1:" + std::to_string(port));
        return true;
    }

    void stop() {
        xphost::setCommunityServer("");
        if (pid > 0) {
            kill(pid, SIGTERM);
            int status = 0;
            for (int i = 0; i < 40 && waitpid(pid, &status, WNOHANG) == 0; ++i)
                std::this_thread::sleep_for(std::chrono::milliseconds(50));
            if (waitpid(pid, &status, WNOHANG) == 0) {
                kill(pid, SIGKILL);
                waitpid(pid, &status, 0);
            }
            pid = -1;
        }
        if (!folder.empty()) {
            std::error_code ignored;
            std::filesystem::remove_all(folder, ignored);
        }
    }

    std::string filesFolder() const { return folder + "/Vistarig/CommunityFiles/"; }
    void setMode(const std::string& mode) const { std::ofstream(folder + "/hostile-mode") << mode; }
    void clearFiles() const {
        std::error_code ignored;
        for (const auto& entry : std::filesystem::directory_iterator(filesFolder(), ignored))
            std::filesystem::remove(entry.path(), ignored);
    }
};
