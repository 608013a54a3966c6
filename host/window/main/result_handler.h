// Passes what the workers report to the data and to the windows that show it.
#pragma once

#include "platform/wide_text.h"
#include "window/main/device_commands.h"
#include "window/main/main_window.h"
#include "window/resource.h"
#include "window/strings.h"

namespace vndiscover::host {

class ResultHandler : public Results {
  public:
    // The window must outlive it.
    explicit ResultHandler(MainWindow& window) : window_(window), state_(window.state) {}

    void OnSweepBegan(WorkerId worker, const SweepStep& step, const std::string& time) override {
        state_.session.BeginSweep(worker, step, time);
    }
    void OnAnswer(WorkerId worker, ScanAnswer answer) override {
        state_.session.AddAnswer(worker, std::move(answer));
        state_.progress.CountAnswer();
    }
    void OnSweepEnded(WorkerId worker, bool wasSent, const std::string& problem) override {
        const bool isComplete = wasSent && problem.empty() && !state_.progress.IsStopping();
        state_.session.EndSweep(worker, isComplete);
        window_.searches.EndSweep(wasSent, problem);
    }
    void OnReadingBegan(const std::string& address, bool isForList) override {
        state_.session.BeginReading(address);
        if (!isForList) state_.progress.BeginAsking(address);
    }
    void OnRead(Read read) override {
        if (!read.isForList) state_.progress.EndAsking(read.target.address);
        const Status status = read.answers.lastStatus;
        const bool isRefusal = status == Status::kRefused || status == Status::kOnlyDiscovered;
        if (read.target.login.security && isRefusal) {
            const std::wstring refusal = Text(
                IDS_V3_REFUSED, {ToWide(read.target.address), ToWide(read.answers.lastProblem)});
            state_.progress.SetNote(refusal);
            state_.refusal = refusal;
            if (state_.options.exit) state_.ReportProblem(refusal);
        } else if (read.target.login.security && status == Status::kAnswered) {
            state_.refusal.clear();  // the user is right
        }
        const bool hasValues = !read.isPostponed && !read.answers.values.empty();
        state_.session.AddReading(std::move(read));
        if (hasValues) window_.scans.ShowReadSince();
    }
    void OnReadAll(const Progress::Read& read) override {
        state_.progress.EndReadingAll(read);
        state_.showRows();  // includes the last results
        // A script waits for all other requests, too.
        const bool isOver = state_.workers && state_.workers->Now().read.total == 0;
        if (isOver && !state_.options.exit) window_.searches.EndReading();
    }
    void OnWalkBegan(unsigned walk, const std::string& address) override {
        state_.progress.BeginWalk(address);
        window_.walk.OnBegan(walk);
    }
    void OnVariable(unsigned walk, Answer variable) override {
        state_.progress.CountValue();
        window_.walk.Add(walk, std::move(variable));
    }
    void OnWalked(unsigned walk, bool hasBegun, const WalkEnd& end,
                  const std::string& problem) override {
        if (hasBegun) state_.progress.EndWalk();
        window_.walk.OnEnded(walk, end, problem);
    }
    void OnDiagnosisBegan(const std::string& address) override {
        state_.progress.BeginAsking(address);
    }
    void OnDiagnosed(const std::string& address, const HostDiagnosis& diagnosis,
                     const AdapterList& adapters) override {
        state_.progress.EndAsking(address);
        if (!state_.workers) return;
        window_.doctor.ShowDiagnosis(address, diagnosis, adapters, state_.window);
    }
    void OnResolved(const Addresses& addresses, std::vector<std::string> unknown) override {
        if (!state_.workers) return;
        state_.progress.ClearNote();
        ReadAdded(state_, addresses, std::move(unknown), window_.searches.ReadsFound());
    }
    void OnAdapters(const AdapterList& adapters) override {
        state_.session.SetAdapters(adapters);
        state_.progress.SetNetworks(CountNetworks(adapters));
    }
    void OnReport(const ComputerReport& report) override {
        if (!state_.workers) return;
        state_.progress.ClearNote();
        window_.doctor.ShowReport(report, state_.window);
    }
    void OnJobFailed(const std::string& problem) override {
        if (state_.workers) state_.ReportProblem(Text(IDS_JOB_FAILED, {ToWide(problem)}));
    }
    void OnCall(Call call) override { window_.calls.Add(std::move(call)); }

  private:
    MainWindow& window_;
    WindowState& state_;
};

}  // namespace vndiscover::host
