// helloModule: the smallest module beside the keyer's. It announces a package
// that depends on the keyer's module (tesseraUiZnmodule), so the host starts it
// after that module and everything that module needs; at start-up it
// registers its build information and subscribes one message from its own
// catalogue (hello.msg), and it listens to matte-parameter broadcasts through
// the dispatcher and handler that the keyer's module exports.
#include <base/cbDispatcher.h>
#include <base/inBuildInfoUtil.h>
#include <base/inInit.h>
#include <resmgt/msgFileGuard.h>
#include <resmgt/msgServer.h>
#include <resmgt/msgSubscription.h>
#include <tesseraCore/tsMgTool.h>
#include <tesseraCore/tsMgTypes.h>

#include <new>
#include <string>

// The package's tag: other packages would depend on this one through
// InInit<HelloInit::helloModule>::getType().
namespace HelloInit {
struct helloModule {};
} // namespace HelloInit

namespace {

// Subscribed at start-up; its text names what the listener reacts to.
MsgSubscription matteChanged("MSG_HELLO_MATTE_CHANGED");

// A listener of matte-parameter broadcasts: a matte-generation tool of the
// keyer announces every parameter change through a
// CbDispatcher<const TsMgTypes::MatteParam>. It counts what it heard and keeps
// the name of the last parameter.
class MatteListener : public CbHandler<const TsMgTypes::MatteParam> {
public:
    void callback(const TsMgTypes::MatteParam& p) override {
        ++heard;
        last = TsMgTool::getMatteParamName(p);
    }
    int heard = 0;
    std::string last;
};

class HelloBuildInfo : public InBuildInfo {
public:
    const char* getDescription() const override { return _description.c_str(); }
    const char* getLibraryName() const override { return "libhelloModule"; }
    const char* getReleaseYear() const override { return "2026"; }
    const char* getVersion() const override { return "1.0"; }
    const char* getBuildKind() const override { return "example"; }
    int getMajorVersion() const override { return 1; }
    int getMinorVersion() const override { return 0; }
    int getBuildCode() const override { return 0; }
    const char* getBuildNumber() const override { return "1"; }
    const char* getBuildDate() const override { return __DATE__; }
    const char* getBuildFlavour() const override { return "example"; }

    std::string _description;
};

} // namespace

template <>
void InInit<HelloInit::helloModule>::startup() {
    {
        const MsgFileGuard guard("hello.msg");
        MsgServer::getInstance().registerSubscription(&matteChanged);
    }
    // A broadcast of every matte parameter reaches the listener once each, in
    // order: the dispatcher a keyer node's tools share works the same way.
    MatteListener listener;
    CbDispatcher<const TsMgTypes::MatteParam> dispatcher;
    dispatcher.addHandler(&listener);
    for (auto p = TsMgTypes::Overall; p < TsMgTypes::MatteParamCount; p = TsMgTypes::next(p)) {
        dispatcher.call(p);
    }
    auto* info = new (std::nothrow) HelloBuildInfo;
    if (info) {
        info->_description = matteChanged.getText() + " (heard " + std::to_string(listener.heard) +
                             ", the last " + listener.last + ")";
    }
    InBuildInfoUtil::registerInfo(OPtr<InBuildInfo>(info));
}

namespace {

InInit<HelloInit::helloModule> package("helloModule");

const bool registered = [] {
    package.registerPackage();
    package.addDependency(InInit<ZnInit::tesseraUiZnmodule>::getType());
    return true;
}();

} // namespace
