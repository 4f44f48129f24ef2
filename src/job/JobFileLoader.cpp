#include "job/JobFileLoader.h"

#include "job/JobReadDriver.h"

#include <cstdio>
#include <ctime>
#include <iostream>
#include <mutex>

namespace qrx {

namespace {

// Each step of the version chain: from, to.
const char *const kUpgradeSteps[][2] = {
    {"", "1.0.0"},      {"1.0.0", "1.0.1"}, {"1.0.1", "1.0.2"},
    {"1.0.2", "1.0.3"}, {"1.0.3", "1.0.4"}, {"1.0.4", "1.0.5"},
};
const char *const kDoubleRobotStep = "1.0.2";

std::mutex currentMutex;
std::shared_ptr<JobProgram> current;

// The whole file, or false when it cannot be opened for reading.
bool readFile(const std::string &fileName, std::string &text)
{
    std::FILE *file = std::fopen(fileName.c_str(), "r");
    if (!file)
        return false;
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        text.append(buffer, n);
    std::fclose(file);
    return true;
}

} // namespace

std::string jobFileDate()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char text[32];
    std::strftime(text, sizeof text, "%Y.%m.%d %H:%M:%S", &local);
    return text;
}

std::vector<std::string> upgradeJobProgram(JobProgram &program, const std::string &fileName,
                                           const std::string &doubleRobot)
{
    std::vector<std::string> reached;
    for (const auto &step : kUpgradeSteps) {
        if (program.version != step[0])
            continue;
        program.version = step[1];
        if (program.version == kDoubleRobotStep)
            program.doubleRobot = doubleRobot;
        program.writeJobFile(fileName, jobFileDate());
        reached.push_back(program.version);
    }
    if (program.doubleRobot.empty()) { // the other value is "Cooperative"
        program.doubleRobot = "NoCooperative";
        program.writeJobFile(fileName, jobFileDate());
    }
    return reached;
}

std::unique_ptr<JobProgram> loadJobFile(const std::string &fileName, const std::string &robotType,
                                        const std::string &doubleRobot, const std::string & /*third*/,
                                        std::ostream &out, JobLoadReport *report)
{
    std::string text;
    if (!readFile(fileName, text)) {
        out << "打开作业文件 " << fileName << " 失败" << std::endl;
        return nullptr;
    }
    JobReadDriver driver(out);
    std::unique_ptr<JobProgram> program = driver.read(text);
    if (report) {
        report->errorLine = driver.errorLine();
        report->errorMessage = driver.errorMessage();
        report->errorDescription = driver.errorDescription();
        report->missingPositions = driver.missingPositions();
    }
    if (!program || program->instructions.size() < 2) {
        out << "Open and parse file fail: pro" << fileName << std::endl;
        return nullptr;
    }
    out << "Open and parse file success:" << fileName << std::endl;
    std::vector<std::string> reached = upgradeJobProgram(*program, fileName, doubleRobot);
    const bool mismatch = program->robotType != robotType;
    if (mismatch)
        out << "作业中的机器人类型与当前机器人类型不一致 文件名：" << fileName << std::endl;
    if (report) {
        report->upgrades = std::move(reached);
        report->robotTypeMismatch = mismatch;
    }
    return program;
}

int openJobFile(const std::string &fileName, const std::string &robotType, const std::string &doubleRobot,
                const std::string &third)
{
    std::unique_ptr<JobProgram> program = loadJobFile(fileName, robotType, doubleRobot, third, std::cout);
    if (!program)
        return 0;
    std::lock_guard<std::mutex> lock(currentMutex);
    current = std::move(program);
    return 1;
}

std::shared_ptr<JobProgram> currentJobProgram()
{
    std::lock_guard<std::mutex> lock(currentMutex);
    return current;
}

} // namespace qrx
