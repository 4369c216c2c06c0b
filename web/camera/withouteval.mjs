// Replaces the functions of the face mesh's glue code that make functions of texts, which a page's policy without
// 'unsafe-eval' forbids. The functions here do the same by closures.

/** Each function, as it begins and ends in the glue code, by name. */
const replacements = {
  createNamedFunction: `function createNamedFunction(name, body) {
    name = makeLegalFunctionName(name);
    return { [name]: function () { return body.apply(this, arguments); } }[name];
  }`,

  // argTypes: of the result, of the object (null for a function), of each argument
  craftInvokerFunction: `function craftInvokerFunction(humanName, argTypes, classType, cppInvokerFunc, cppTargetFunc) {
    const count = argTypes.length - 2;
    if (count < 0) throwBindingError("argTypes array size mismatch! Must at least get return value and 'this' types!");
    const isMethod = argTypes[1] !== null && classType !== null;
    const wiredTypes = isMethod ? argTypes.slice(1) : argTypes.slice(2);
    const keepsStack = argTypes.slice(1).some((type) => type !== null && type.destructorFunction === undefined);
    const returns = argTypes[0].name !== "void";
    return function (...given) {
      if (given.length !== count)
        throwBindingError("function " + humanName + " called with " + given.length + " arguments, expected " + count + " args!");
      const destructors = keepsStack ? [] : null;
      const values = isMethod ? [this, ...given] : given;
      const wired = wiredTypes.map((type, i) => type.toWireType(destructors, values[i]));
      const result = cppInvokerFunc(cppTargetFunc, ...wired);
      if (keepsStack) runDestructors(destructors);
      else wiredTypes.forEach((type, i) => type.destructorFunction !== null && type.destructorFunction(wired[i]));
      return returns ? argTypes[0].fromWireType(result) : undefined;
    };
  }`,

  __emval_get_method_caller: `function __emval_get_method_caller(argCount, argTypes) {
    const [returnType, ...types] = __emval_lookupTypes(argCount, argTypes);
    return __emval_addMethodCaller(function (handle, name, destructors, args) {
      let offset = 0;
      const values = types.map((type) => {
        const value = type.readValueFromPointer(args + offset);
        offset += type.argPackAdvance;
        return value;
      });
      const result = handle[name](...values);
      types.forEach((type, i) => type.deleteObject && type.deleteObject(values[i]));
      return returnType.isVoid ? undefined : returnType.toWireType(destructors, result);
    });
  }`,
};

/** Returns where the function that begins there ends. Braces in its texts are in pairs. */
function endOfFunction(code, begin) {
  let depth = 0;
  for (let at = code.indexOf("{", begin); at >= 0 && at < code.length; ++at) {
    if (code[at] === "{") ++depth;
    if (code[at] === "}" && --depth === 0) return at + 1;
  }
  throw new Error("the end of a function of the glue code was not found");
}

/** Returns the glue code without functions that are made of texts. */
export function withoutEval(code) {
  let text = code;
  for (const [name, replacement] of Object.entries(replacements)) {
    const begin = text.indexOf(`function ${name}(`);
    if (begin < 0) throw new Error(`the glue code of the face mesh has no function ${name}: is the package another version?`);
    text = text.slice(0, begin) + replacement.replace(/\/\/.*\n/g, "\n") + text.slice(endOfFunction(text, begin));
  }
  if (/new Function\(|new_\(Function|[^.\w]eval\(/.test(text)) throw new Error("the glue code of the face mesh still makes functions of texts");
  return text;
}
