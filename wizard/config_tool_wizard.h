// The step-by-step dialogue. Every step passes its answer to the configuration library at once.
#pragma once

#include <boost/shared_ptr.hpp>

#include "conf_tool/lib_caller.h"

namespace wizard {

class CConfigToolWizard {
public:
    // StartWizard reads the edition and the previous configuration from the library. A step that runs alone uses the
    // given edition and no previous configuration.
    explicit CConfigToolWizard(boost::shared_ptr<conf_tool::CConfigToolLibCaller> caller,
                               conf_tool::Edition edition = conf_tool::Edition::Unlimited);

    // Asks, shows the summary, and applies, exports or cancels, until the user is done. Shows a failure and offers a
    // restart; failures do not leave this function.
    void StartWizard();

    // The steps. They throw if the answer or the library fails; nothing is asked twice.
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
    conf_tool::Edition edition_;
    boost::shared_ptr<const conf_tool::ConfigurationSnapshot> previous_;  // never null; without the password
    bool has_password_ = false;                                           // whether one is configured
    bool cancelled_ = false;                                              // only written; fixed from outside
};

}  // namespace wizard
