# Completion of skeigiot for bash. Made by script/build-manual from what the command says of itself.

_skeigiot_files()
{
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

_skeigiot_words()
{
  mapfile -t COMPREPLY < <(compgen -W "$2" -- "$1")
}

_skeigiot()
{
  local word=${COMP_WORDS[COMP_CWORD]} option=${COMP_WORDS[COMP_CWORD - 1]} command="" i
  COMPREPLY=()

  # To bash an equals sign is a word of its own, and --color=never are three.
  if [[ $word == = ]]; then
    word=
  elif [[ $option == = ]]; then
    option=${COMP_WORDS[COMP_CWORD - 2]}
  fi

  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      agree | replay | inspect | mapping | report | stream | types | watch | why | help)
        command=${COMP_WORDS[i]}
        break
        ;;
    esac
  done

  case "$command $option" in
    "agree --label" | "agree --unlabelled" | "agree --scale" | "agree --person" | "agree --tier" | "agree --labels-offset" | "agree --max-delay" | "agree --cycle" | "agree --fps" | "agree --look-at" | "agree --rest" | "agree --camera-height" | "agree --min-confidence" | "agree --au-full-scale" | "agree --person-from" | "agree --boundary-positive" | "agree --boundary-negative" | "agree --boundary-confidence" | "agree --boundary-looking-at-robot" | "agree --boundary-strictly-looking-at-robot" | "agree --boundary-excited")
      :
      return
      ;;
    "agree --labels" | "agree --offset" | "agree --csv" | "agree --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "agree --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "agree --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
    "agree --value")
      _skeigiot_words "$word" "valence attention"
      return
      ;;
    "replay --cycle" | "replay --jobs" | "replay --scope" | "replay --step" | "replay --fps" | "replay --look-at" | "replay --rest" | "replay --camera-height" | "replay --min-confidence" | "replay --au-full-scale" | "replay --person-from" | "replay --boundary-positive" | "replay --boundary-negative" | "replay --boundary-confidence" | "replay --boundary-looking-at-robot" | "replay --boundary-strictly-looking-at-robot" | "replay --boundary-excited")
      :
      return
      ;;
    "replay --offset" | "replay --csv" | "replay --jsonl" | "replay --summary" | "replay --to-jsonl" | "replay --report" | "replay --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "replay --color")
      _skeigiot_words "$word" "auto always never"
      return
      ;;
    "replay --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "replay --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
    "inspect --fps" | "inspect --look-at" | "inspect --rest" | "inspect --camera-height" | "inspect --min-confidence" | "inspect --au-full-scale" | "inspect --person-from")
      :
      return
      ;;
    "inspect --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "inspect --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "inspect --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
    "report --scope" | "report --cycle" | "report --video-offset" | "report --label" | "report --unlabelled" | "report --scale" | "report --person" | "report --tier" | "report --labels-offset" | "report --fps" | "report --look-at" | "report --rest" | "report --camera-height" | "report --min-confidence" | "report --au-full-scale" | "report --person-from" | "report --boundary-positive" | "report --boundary-negative" | "report --boundary-confidence" | "report --boundary-looking-at-robot" | "report --boundary-strictly-looking-at-robot" | "report --boundary-excited")
      :
      return
      ;;
    "report -o" | "report --output" | "report --offset" | "report --labels" | "report --video" | "report --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "report --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "report --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
    "report --value")
      _skeigiot_words "$word" "valence attention"
      return
      ;;
    "stream --cycle")
      :
      return
      ;;
    "stream --times")
      _skeigiot_words "$word" "arrival lines"
      return
      ;;
    "watch --speed" | "watch --cycle" | "watch --fps" | "watch --look-at" | "watch --rest" | "watch --camera-height" | "watch --min-confidence" | "watch --au-full-scale" | "watch --person-from")
      :
      return
      ;;
    "watch --offset" | "watch --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "watch --times")
      _skeigiot_words "$word" "arrival lines"
      return
      ;;
    "watch --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "watch --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
    "why --person" | "why --at" | "why --from" | "why --to" | "why --cycle" | "why --fps" | "why --look-at" | "why --rest" | "why --camera-height" | "why --min-confidence" | "why --au-full-scale" | "why --person-from")
      :
      return
      ;;
    "why --offset" | "why --mapping")
      _skeigiot_files "$word"
      return
      ;;
    "why --frame")
      _skeigiot_words "$word" "line-of-sight camera"
      return
      ;;
    "why --format")
      _skeigiot_words "$word" "livelink pyfeat blendshapes openface tidy mediapipe rosbag2 jsonl"
      return
      ;;
  esac

  case $command in
    "")
      _skeigiot_words "$word" "agree replay inspect mapping report stream types watch why help --help --version -h"
      ((${#COMPREPLY[@]})) || _skeigiot_files "$word"  # a recording
      ;;
    agree)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --csv --cycle --force --format --fps --frame --help --json --label --labels --labels-offset --look-at --mapping --max-delay --min-confidence --mirrored --offset --person --person-from --rest --scale --skip-bad --tier --unlabelled --value -h"
      fi
      ;;
    replay)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --color --csv --cycle --explain --force --format --fps --frame --help --jobs --jsonl --look-at --mapping --min-confidence --mirrored --offset --person-from --quiet --report --rest --scope --separately --skip-bad --step --summary --to-jsonl -h -q"
      fi
      ;;
    inspect)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --camera-height --columns --format --fps --frame --help --json --look-at --mapping --min-confidence --mirrored --person-from --rest --skip-bad -h"
      fi
      ;;
    mapping)
      _skeigiot_words "$word" "--help -h"
      ;;
    report)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --boundary-confidence --boundary-excited --boundary-looking-at-robot --boundary-negative --boundary-positive --boundary-strictly-looking-at-robot --camera-height --cycle --force --format --fps --frame --help --label --labels --labels-offset --look-at --mapping --min-confidence --mirrored --offset --output --person --person-from --rest --scale --scope --skip-bad --tier --unlabelled --value --video --video-offset -h -o"
      fi
      ;;
    stream)
      _skeigiot_words "$word" "--cycle --help --times -h"
      ;;
    types)
      _skeigiot_words "$word" "--help --json -h"
      ;;
    watch)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--au-full-scale --camera-height --cycle --format --fps --frame --help --look-at --mapping --min-confidence --mirrored --offset --person-from --rest --skip-bad --speed --times -h"
      fi
      ;;
    why)
      if [[ $word != -* ]]; then
        _skeigiot_files "$word"
      else
        _skeigiot_words "$word" "--all --at --au-full-scale --camera-height --cycle --format --fps --frame --from --help --json --look-at --mapping --min-confidence --mirrored --offset --person --person-from --rest --skip-bad --to -h"
      fi
      ;;
    help)
      _skeigiot_words "$word" "agree replay inspect mapping report stream types watch why help --help -h"
      ;;
  esac
}

complete -F _skeigiot skeigiot
