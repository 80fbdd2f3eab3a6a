#include "filter/FunctionList.h"

#include "access/PrViewer.h"

namespace tavix {

Result<std::vector<FilterFunction>> ReadFunctions(PrViewer& viewer) {
    const int count = viewer.getFunctionCount();
    if (count < 0)
        return Error{viewer.getErrorString().str()};
    std::vector<FilterFunction> functions;
    for (int i = 0; i < count; ++i) {
        KvbString name;
        KvbString parameterTypes;
        KvbString description;
        FilterFunction function;
        if (!viewer.getFunctionInfo(i, name, parameterTypes, function.returnType, description, function.count1,
                                    function.count2))
            return Error{viewer.getErrorString().str()};
        function.name = name.str();
        function.parameterTypes = parameterTypes.str();
        function.description = description.str();
        functions.push_back(std::move(function));
    }
    return functions;
}

} // namespace tavix
