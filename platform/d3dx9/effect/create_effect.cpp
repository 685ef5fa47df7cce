// SPDX-License-Identifier: MIT
//
// The functions that make effects and shaders from their texts.
#include "platform/d3dx9/effect/constant_table.hpp"
#include "platform/d3dx9/effect/data_buffer.hpp"
#include "platform/d3dx9/effect/effect.hpp"
#include "platform/d3dx9/effect/include_adapter.hpp"

#include <exception>
#include <system_error>

using namespace VornPlatform;

namespace {

// What messages call a text that comes from no file.
constexpr const char* MemoryName = "memory";

Macros MacrosOf(const D3DXMACRO* macros) {
    Macros list;
    for (; macros && macros->Name; ++macros)
        list.emplace_back(macros->Name, macros->Definition ? macros->Definition : "");
    return list;
}

void GiveText(const std::string& text, ID3DXBuffer** errors) {
    if (errors && !text.empty())
        *errors = MakeTextBuffer(text);
}

/// What `make` raises becomes a result, and the compiler's text a buffer.
template <typename Function>
HRESULT Compile(HRESULT refused, ID3DXBuffer** errors, const Function& make) {
    try {
        try {
            return make();
        } catch (const EffectError& error) {
            GiveText(error.what(), errors);
            return refused;
        } catch (const std::system_error&) { // no such file
            return D3DXERR_INVALIDDATA;
        }
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception&) {
        return E_FAIL;
    }
}

/// With `compile` that gives the code of the effect.
template <typename Function>
HRESULT CreateEffect(IDirect3DDevice9* device, ID3DXEffect** effect, ID3DXBuffer** errors,
                     const Function& compile) {
    auto* host = dynamic_cast<EffectHost*>(device);
    if (!host)
        return D3DERR_INVALIDCALL;
    return Compile(E_FAIL, errors, [&]() -> HRESULT {
        const std::shared_ptr<const EffectCode> code = compile();
        Held<ID3DXBuffer> warnings(code->warnings.empty() ? nullptr
                                                          : MakeTextBuffer(code->warnings));
        const HRESULT result = Effect::Make(device, *host, code, effect);
        if (SUCCEEDED(result) && errors)
            *errors = warnings.release();
        return result;
    });
}

struct ShaderResults {
    ID3DXBuffer** code;
    ID3DXBuffer** errors;
    ID3DXConstantTable** constants;
};

void Clear(const ShaderResults& results) {
    if (results.code)
        *results.code = nullptr;
    if (results.errors)
        *results.errors = nullptr;
    if (results.constants)
        *results.constants = nullptr;
}

void Give(const std::shared_ptr<const CompiledShader>& shader, const ShaderResults& results) {
    const std::vector<DWORD> words = Pack(*shader->code);
    Held<ID3DXBuffer> code(MakeDataBuffer(words.data(), words.size() * sizeof(DWORD)));
    Held<ID3DXConstantTable> constants(results.constants ? MakeConstantTable(shader) : nullptr);
    GiveText(shader->warnings, results.errors);
    if (results.code)
        *results.code = code.release();
    if (results.constants)
        *results.constants = constants.release();
}

/// With `compile` that gives the shader.
template <typename Function>
HRESULT CompileInto(LPCSTR entry, LPCSTR profile, const ShaderResults& results,
                    const Function& compile) {
    return Compile(D3DXERR_INVALIDDATA, results.errors, [&]() -> HRESULT {
        if (!entry || !profile)
            throw EffectError(entry ? "error: no profile is named" : "error: no entry is named");
        Give(compile(), results);
        return D3D_OK;
    });
}

} // namespace

HRESULT D3DXCreateEffectFromFileA(IDirect3DDevice9* device, LPCSTR path, const D3DXMACRO* macros,
                                  ID3DXInclude* include, DWORD flags, ID3DXEffectPool* pool,
                                  ID3DXEffect** effect, ID3DXBuffer** errors) {
    const void* const memory[] = {macros, include, pool};
    const CallScope call("D3DXCreateEffectFromFileA", device, path, memory[0], memory[1], flags,
                         memory[2]);
    if (errors)
        *errors = nullptr;
    if (!effect)
        return D3DERR_INVALIDCALL;
    *effect = nullptr;
    if (!path)
        return D3DERR_INVALIDCALL;
    return CreateEffect(device, effect, errors, [&] {
        IncludeAdapter includes(include);
        return CompileEffect(path, MacrosOf(macros), includes.Reader());
    });
}

HRESULT D3DXCreateEffect(IDirect3DDevice9* device, LPCVOID text, UINT bytes,
                         const D3DXMACRO* macros, ID3DXInclude* include, DWORD flags,
                         ID3DXEffectPool* pool, ID3DXEffect** effect, ID3DXBuffer** errors) {
    const void* const memory[] = {macros, include, pool};
    const CallScope call("D3DXCreateEffect", device, text, bytes, memory[0], memory[1], flags,
                         memory[2]);
    if (errors)
        *errors = nullptr;
    if (!effect)
        return D3DERR_INVALIDCALL;
    *effect = nullptr;
    if (!text)
        return D3DERR_INVALIDCALL;
    return CreateEffect(device, effect, errors, [&] {
        IncludeAdapter includes(include);
        return std::make_shared<const EffectCode>(
            CompileEffectText(MemoryName, std::string_view(static_cast<const char*>(text), bytes),
                              MacrosOf(macros), includes.Reader()));
    });
}

HRESULT D3DXCompileShaderFromFileA(LPCSTR path, const D3DXMACRO* macros, ID3DXInclude* include,
                                   LPCSTR entry, LPCSTR profile, DWORD flags, ID3DXBuffer** code,
                                   ID3DXBuffer** errors, ID3DXConstantTable** constants) {
    const void* const memory[] = {macros, include};
    const CallScope call("D3DXCompileShaderFromFileA", path, memory[0], memory[1], entry, profile,
                         flags);
    const ShaderResults results = {code, errors, constants};
    Clear(results);
    if (!path)
        return D3DERR_INVALIDCALL;
    return CompileInto(entry, profile, results, [&] {
        IncludeAdapter includes(include);
        return CompileShader(path, MacrosOf(macros), includes.Reader(), entry, profile);
    });
}

HRESULT D3DXCompileShader(LPCSTR text, UINT bytes, const D3DXMACRO* macros, ID3DXInclude* include,
                          LPCSTR entry, LPCSTR profile, DWORD flags, ID3DXBuffer** code,
                          ID3DXBuffer** errors, ID3DXConstantTable** constants) {
    const void* const memory[] = {text, macros, include};
    const CallScope call("D3DXCompileShader", memory[0], bytes, memory[1], memory[2], entry,
                         profile, flags);
    const ShaderResults results = {code, errors, constants};
    Clear(results);
    if (!text)
        return D3DERR_INVALIDCALL;
    return CompileInto(entry, profile, results, [&] {
        IncludeAdapter includes(include);
        return std::make_shared<const CompiledShader>(
            CompileShaderText(MemoryName, std::string_view(text, bytes), MacrosOf(macros),
                              includes.Reader(), entry, profile));
    });
}
