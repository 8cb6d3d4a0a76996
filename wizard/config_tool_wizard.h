// The step-by-step dialogue. Every step passes its answer to the configuration library at once.
#pragma once

#include <boost/shared_ptr.hpp>

#include "conf_tool/lib_caller.h"

namespace wizard {

class CConfigToolWizard {
public:
    // The edition and the previous configuration are read from the library by StartWizard. A step that is run on its
    // own works with the edition given here, and with no previous configuration.
    explicit CConfigToolWizard(boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller, int scope_edition = 0);

    // Asks, shows the summary, and applies, exports or cancels, until the user is done. A failure is shown and may be
    // answered with a restart; none leaves this function.
    void StartWizard();

    // The steps. A failure of the answer or of the library is raised; nothing is asked twice.
    void AskHost();
    void AskPort();
    void AskCredentials();
    void AskRepositories();
    void AskParallelism();
    void ShowSummary();

private:
    void RunIteration();
    void LoadPreviousConfig();
    void AskAndSave();
    static int AskSaveChoice();
    void ApplyChoice(int choice, bool& again);
    void ExportTovakConfigFile();
    void ExportRmanConfigFile();
    void ShowResult();

    boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller_;
    int scope_edition_;
    boost::shared_ptr<const conf_tool::ConfigurationSnapshot> previous_;  // never null
    bool cancelled_ = false;
};

}  // namespace wizard
