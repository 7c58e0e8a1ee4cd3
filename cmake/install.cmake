# What "cmake --install" puts where: GNUInstallDirs' folders below the prefix.

include(GNUInstallDirs)

set(programs orlo orlo-explain)
foreach(program IN ITEMS orlo-export orlo-view) # not on every system
  if(TARGET ${program})
    list(APPEND programs ${program})
  endif()
endforeach()
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

install(FILES docs/man/orlo.1 docs/man/orlo-explain.1 docs/man/orlo-export.1 docs/man/orlo-view.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES docs/man/orlo.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5)
install(FILES completions/orlo completions/orlo-explain completions/orlo-export completions/orlo-view
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES packaging/orlo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)

# manual and tutorial with their pictures, the form of orlo-explain's documents, and the examples: *.csd can be rendered where they
# are, or from anywhere
install(FILES LICENSE docs/explain.schema.json DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}
  FILES_MATCHING PATTERN "*.md" PATTERN "*.svg" PATTERN "*.png" PATTERN man EXCLUDE)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
  FILES_MATCHING PATTERN "*.orlo" PATTERN "*.inc" PATTERN "*.orc" PATTERN "*.csd" PATTERN "*.md" PATTERN "*.svg" PATTERN "notes.py")

# what editors read, where a Debian system's editors look for it; VS Code has no such place
install(DIRECTORY editors/vim/ DESTINATION ${CMAKE_INSTALL_DATADIR}/vim/vimfiles FILES_MATCHING PATTERN "*.vim")
install(FILES editors/emacs/orlo-mode.el DESTINATION ${CMAKE_INSTALL_DATADIR}/emacs/site-lisp)
install(FILES editors/textmate/orlo.tmLanguage.json editors/textmate/orlo-csd.tmLanguage.json editors/README.md
  DESTINATION ${CMAKE_INSTALL_DATADIR}/orlo/editors)
install(DIRECTORY editors/vscode DESTINATION ${CMAKE_INSTALL_DATADIR}/orlo/editors)
