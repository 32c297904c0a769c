// Builds a document with the classes that have the name of Xerces.

#include <opc/model/XercesGuard.hpp>
#include <opc/model/XercesHelper.hpp>

#include <xercesc/dom/DOM.hpp>

int main() {
    const opc::model::XercesGuard guard;
    const auto document = opc::model::XercesHelper::createDocument();
    const auto* root =
        opc::model::XercesHelper::appendElement(document.get(), opc::model::XercesString(u"a"));
    return root == document->getDocumentElement() ? 0 : 1;
}
