# Sourced by the scripts that measure: numbers that the shell does not know.

# calculate EXPRESSION [NAME=VALUE...]: the value of an awk expression.
calculate() {
  local expression=$1 assignment options=()
  shift
  for assignment in "$@"; do options+=(-v "$assignment"); done
  awk "${options[@]}" "BEGIN { print $expression }"
}

# holds CONDITION [NAME=VALUE...]: yes or no.
holds() {
  local condition=$1
  shift
  calculate "(($condition) ? \"yes\" : \"no\")" "$@"
}
