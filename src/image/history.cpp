#include "image/history.h"

#include <algorithm>
#include <deque>
#include <utility>
#include <vector>

#include "image/accessors.h"
#include "image/image.h"

namespace zandrel {
namespace {

// A step over all cells of a map takes some 50 kB.
constexpr std::size_t kMostSteps = 300;

struct Step {
    std::string Name;
    std::vector<Change> Changes;
};

std::deque<Step> Done;
std::deque<Step> Undone;
Step Open;
int Gestures = 0;
bool EditInGesture = false;
bool GoesOn = false;

// Adds a change to a step; one of the same place becomes a single change.
void Add(Step& step, Change change) {
    const auto same =
        std::find_if(step.Changes.begin(), step.Changes.end(), [&change](const Change& earlier) {
            return earlier.Block == change.Block && earlier.Start == change.Start &&
                   earlier.After == change.Before && earlier.After.size() == change.After.size();
        });
    if (same == step.Changes.end()) {
        step.Changes.push_back(std::move(change));
    } else {
        same->After = std::move(change.After);
    }
}

void CloseStep() {
    if (Open.Changes.empty()) return;
    const bool joins = GoesOn && Undone.empty() && !Done.empty() && Done.back().Name == Open.Name;
    Undone.clear();
    if (joins) {
        for (Change& change : Open.Changes) Add(Done.back(), std::move(change));
        Open = {};
        return;
    }
    Done.push_back(std::exchange(Open, {}));
    if (Done.size() > kMostSteps) Done.pop_front();
}

// False: the block no longer holds what the step has left there, and stays as it is.
bool Put(const Change& change, const ByteString& present, const ByteString& wanted) {
    ByteString& data = ReadData[change.Block];
    if (change.Start > data.size() || data.compare(change.Start, present.size(), present) != 0 ||
        (change.Whole && data.size() != present.size())) {
        return false;
    }
    data.replace(change.Start, present.size(), wanted);
    BlockChanged[change.Block] = true;
    DataChanged = true;
    if (change.Map >= 0) {
        MapCellChanged[static_cast<std::size_t>(change.Map)][static_cast<std::size_t>(change.Row)]
                      [static_cast<std::size_t>(change.Column)] = true;
    }
    return true;
}

// The map whose cells are all that the step has changed, or -1.
int SingleMap(const Step& step) {
    const int map = step.Changes.front().Map;
    const bool one = std::all_of(step.Changes.begin(), step.Changes.end(),
                                 [map](const Change& change) { return change.Map == map; });
    return one ? map : -1;
}

void TellEdit() {
    AfterGesture();
    AfterEdit();
}

std::string NameOfLast(const std::deque<Step>& steps) {
    return steps.empty() ? std::string() : steps.back().Name;
}

}  // namespace

void Carry(Change change) {
    if (!Put(change, change.Before, change.After)) return;
    const bool single = Gestures == 0;
    if (single) {
        Open.Name = "Edit";
        GoesOn = false;
    }
    if (change.Before != change.After) Open.Changes.push_back(std::move(change));
    if (single) CloseStep();
    EditDone();
}

void EditDone() {
    if (Gestures > 0) {
        EditInGesture = true;
    } else {
        TellEdit();
    }
}

Gesture::Gesture(std::string_view name, bool goesOn) {
    if (Gestures++ > 0) return;
    Open = {std::string(name), {}};
    GoesOn = goesOn;
}

Gesture::~Gesture() {
    if (--Gestures > 0) return;
    CloseStep();
    if (std::exchange(EditInGesture, false)) TellEdit();
}

bool CanUndo() {
    return !Done.empty();
}

bool CanRedo() {
    return !Undone.empty();
}

std::string UndoName() {
    return NameOfLast(Done);
}

std::string RedoName() {
    return NameOfLast(Undone);
}

bool Undo(int& map) {
    if (Done.empty() || Gestures > 0) return false;
    Step step = std::move(Done.back());
    Done.pop_back();
    bool changed = false;
    for (auto change = step.Changes.rbegin(); change != step.Changes.rend(); ++change) {
        changed |= Put(*change, change->After, change->Before);
    }
    map = SingleMap(step);
    Undone.push_back(std::move(step));
    if (changed) EditDone();
    return changed;
}

bool Redo(int& map) {
    if (Undone.empty() || Gestures > 0) return false;
    Step step = std::move(Undone.back());
    Undone.pop_back();
    bool changed = false;
    for (const Change& change : step.Changes) changed |= Put(change, change.Before, change.After);
    map = SingleMap(step);
    Done.push_back(std::move(step));
    if (changed) EditDone();
    return changed;
}

void ClearHistory() {
    Done.clear();
    Undone.clear();
    Open.Changes.clear();
}

}  // namespace zandrel
