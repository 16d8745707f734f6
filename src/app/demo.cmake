# The demo project: its tables and pictures are part of the library, so that they are found wherever the
# program stands.
herbora_library(herbora_demo app
  SOURCES Demo.cpp DemoData.cpp DemoModules.cpp DemoRecords.cpp DemoReference.cpp DemoWriter.cpp
          SyntheticProject.cpp
  USES herbora_app herbora_query herbora_data herbora_platform herbora_jet)
qt_add_big_resources(HERBORA_DEMO_RESOURCE demo.qrc)
target_sources(herbora_demo PRIVATE ${HERBORA_DEMO_RESOURCE})
