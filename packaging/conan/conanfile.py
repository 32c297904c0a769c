from conan import ConanFile
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy, get, rmdir
from conan.tools.gnu import PkgConfigDeps

required_conan_version = ">=2.0"

# What each component needs of the others. They have the names of the CMake targets.
COMPONENTS = {
    "core": [],
    "network": ["core"],
    "codesigning_verifier": [],  # headers alone
    "crypto": ["core", "codesigning_verifier"],
    "opcmodel": ["core", "crypto", "network"],
    "xerces": ["opcmodel"],
    "memory": ["core"],
    "zip": ["core"],
    "lenient": ["core", "opcmodel"],
    "standard_signatures": ["core", "crypto", "opcmodel"],
    "inspection": ["core", "zip", "opcmodel", "lenient", "memory"],
    "editing": ["opcmodel", "inspection", "lenient", "memory", "zip"],
    "scanning": ["opcmodel", "inspection", "standard_signatures", "zip", "lenient"],
}
OUTSIDE = {
    "core": ["boost::headers"],
    "crypto": ["openssl::crypto"],
    "opcmodel": ["xerces-c::xerces-c"],
    "zip": ["zlib::zlib", "libdeflate::libdeflate"],
    "inspection": ["zlib::zlib", "libdeflate::libdeflate"],
    "editing": ["zlib::zlib", "libdeflate::libdeflate", "nlohmann_json::nlohmann_json"],
    "scanning": ["nlohmann_json::nlohmann_json"],
}
# With _STATIC_DEFINE, the macro that says that a library is static; of the others it is OPC_ and their name.
STATIC_MACROS = {"network": "BEDROCK_NETWORK", "crypto": "BEDROCK_CRYPTO", "opcmodel": "OPC_MODEL"}


class OpcmodelConan(ConanFile):
    name = "opcmodel"
    description = "An object model of packages in the Open Packaging Conventions"
    license = "Apache-2.0"
    topics = ("opc", "ecma-376", "docx", "xlsx", "3mf")
    package_type = "library"
    settings = "os", "arch", "compiler", "build_type"
    options = {"shared": [True, False], "fPIC": [True, False]}
    default_options = {"shared": False, "fPIC": True}
    implements = ["auto_shared_fpic"]

    def layout(self):
        cmake_layout(self, src_folder="src")

    def validate(self):
        check_min_cppstd(self, 17)

    def requirements(self):
        self.requires("boost/1.84.0", transitive_headers=True, options={"header_only": True})
        self.requires("libdeflate/1.19")
        self.requires("nlohmann_json/3.11.3")
        self.requires("openssl/[>=3.0 <4]")
        self.requires("xerces-c/3.2.5", transitive_headers=True)
        self.requires("zlib/[>=1.2.11 <2]")

    def build_requirements(self):
        self.tool_requires("cmake/[>=3.22]")
        self.tool_requires("pkgconf/2.1.0")

    def source(self):
        get(self, **self.conan_data["sources"][self.version], strip_root=True)  # conandata.yml names the archive

    def generate(self):
        toolchain = CMakeToolchain(self)
        toolchain.cache_variables["OPCMODEL_TOOLS"] = False
        toolchain.cache_variables["OPCMODEL_EXAMPLES"] = False
        toolchain.generate()
        CMakeDeps(self).generate()
        PkgConfigDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        for name in ("LICENSE", "NOTICE"):
            copy(self, name, self.source_folder, f"{self.package_folder}/licenses")
        cmake = CMake(self)
        cmake.install()
        rmdir(self, f"{self.package_folder}/lib/cmake")
        rmdir(self, f"{self.package_folder}/lib/pkgconfig")
        rmdir(self, f"{self.package_folder}/share")

    def package_info(self):
        self.cpp_info.set_property("cmake_file_name", "opcmodel")
        self.cpp_info.set_property("pkg_config_name", "opcmodel")
        for name, needed in COMPONENTS.items():
            component = self.cpp_info.components[name]
            component.set_property("cmake_target_name", f"opcmodel::{name}")
            component.requires = needed + OUTSIDE.get(name, [])
            if name == "codesigning_verifier" or (name == "xerces" and not self.options.shared):
                continue
            component.libs = ["opcmodel" if name == "opcmodel" else f"opcmodel_{name}"]
            if not self.options.shared:
                component.defines = [STATIC_MACROS.get(name, f"OPC_{name.upper()}") + "_STATIC_DEFINE"]
            if self.settings.os == "Linux":
                component.system_libs = ["dl", "pthread"]
